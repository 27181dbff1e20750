#pragma once

#include <QJsonArray>
#include <QString>

namespace cloneimport {

/// The clones listed in @p text, ready for the service. One a line: "uid|password" or "uid|password|secret
/// key"; further fields are ignored, lines with fewer are skipped. White space is reduced to single blanks
/// before a line is split. Every clone gets @p profile as its farm profile.
QJsonArray parse(const QString& text, const QString& profile);

} // namespace cloneimport
