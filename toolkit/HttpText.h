#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace toolkit {

/// Compare ASCII text without regard to case.
bool EqualNoCase(std::string_view left, std::string_view right);
bool StartsWithNoCase(std::string_view text, std::string_view prefix);

bool HasHeader(const std::vector<std::pair<std::string, std::string>>& headers, std::string_view name);

/// One header in the notation of libcurl. Throws std::runtime_error when it could break out of its line.
std::string HeaderLine(const std::string& name, const std::string& value);

/// The address of @p path on @p domain. Throws std::runtime_error when a piece could change the meaning of
/// another.
std::string UrlOf(const std::string& domain, int port, bool tls, const std::string& path);

/// Whether @p text holds CR, LF or NUL.
bool BreaksLine(std::string_view text);

} // namespace toolkit
