#pragma once

#include <QJsonArray>
#include <QString>

namespace cloneimport {

/// The clones that @p text lists, ready for the service: a line each, "uid|password" or "uid|password|secret
/// key"; further fields are ignored, lines with fewer are skipped. White space collapses to single blanks
/// before the line is split. Every clone gets @p profile as its farm profile.
QJsonArray parse(const QString& text, const QString& profile);

} // namespace cloneimport
