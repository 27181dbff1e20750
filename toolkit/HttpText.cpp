#include "toolkit/HttpText.h"

#include <algorithm>
#include <stdexcept>

namespace toolkit {
namespace {

using namespace std::string_view_literals;

constexpr auto kTokenChars =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!#$%&'*+-.^_`|~"sv;

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

bool EqualNoCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

bool HasHeader(const HeaderList& headers, std::string_view name)
{
    return std::any_of(headers.begin(), headers.end(),
                       [name](const auto& header) { return EqualNoCase(header.first, name); });
}

void RemoveHeader(HeaderList* headers, std::string_view name)
{
    const auto isNamed = [name](const auto& header) { return EqualNoCase(header.first, name); };
    headers->erase(std::remove_if(headers->begin(), headers->end(), isNamed), headers->end());
}

bool BreaksLine(std::string_view text)
{
    return text.find_first_of("\r\n\0"sv) != std::string_view::npos;
}

std::string HeaderLine(const std::string& name, const std::string& value)
{
    if (name.empty() || name.find_first_not_of(kTokenChars) != std::string::npos)
        throw std::runtime_error("A header name holds characters that are not allowed");
    if (BreaksLine(value))
        throw std::runtime_error("The value of the header " + name + " holds a line break or a NUL");
    // To libcurl "Name:" means "leave it out", and "Name;" a header without a value.
    if (value.find_first_not_of(" \t") == std::string::npos)
        return name + ";";
    return name + ": " + value;
}

} // namespace toolkit
