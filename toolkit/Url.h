#pragma once

#include <optional>
#include <string>

namespace toolkit {

/// What an address names in front of its path.
struct Origin {
    /// An IPv6 address may stand in brackets or without.
    std::string host;
    int port = 0;
    bool tls = false;
};

/// The origin of an http:// or https:// address, IPv6 in brackets; where it names no port, the scheme's own.
/// What follows the origin is left aside. Nothing for any other text. Throws std::bad_alloc at most.
std::optional<Origin> OriginOf(const std::string& url);

/// The address of @p path, which begins with "/", at @p origin. Throws std::runtime_error when a piece could
/// change the meaning of another.
std::string UrlAt(const Origin& origin, const std::string& path);

} // namespace toolkit
