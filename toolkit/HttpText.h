#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace toolkit {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

/// Compares ASCII text without regard to case.
bool EqualNoCase(std::string_view left, std::string_view right);

bool HasHeader(const HeaderList& headers, std::string_view name);
void RemoveHeader(HeaderList* headers, std::string_view name);

/// One header in the notation of libcurl. Throws std::runtime_error when it could break out of its line.
std::string HeaderLine(const std::string& name, const std::string& value);

/// Whether @p text holds CR, LF or NUL.
bool BreaksLine(std::string_view text);

} // namespace toolkit
