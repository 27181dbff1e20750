#pragma once

#include <QByteArray>

namespace devservice {

/// The password of the definitions archive, agreed with the clients.
constexpr char definitionsPassword[] = "0417385926";

/// A zip archive with one encrypted entry, "definitions.txt", that holds @p content; empty on failure.
QByteArray makeDefinitionsArchive(const QByteArray& content);

} // namespace devservice
