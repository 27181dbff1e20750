#pragma once

#include <string>
#include <string_view>

/// Puts into strict JSON what Qt's parser and the services in use let pass in @p part: control characters and
/// needless backslashes in texts, halves of surrogate pairs, whole numbers of more than 64 bits. What is
/// broken otherwise stays so. The result breaks off a little behind @p limit bytes. Any thread.
std::string strictJson(std::string_view part, std::size_t limit);
