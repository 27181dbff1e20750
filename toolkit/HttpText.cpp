#include "toolkit/HttpText.h"

#include <algorithm>
#include <stdexcept>

namespace toolkit {
namespace {

using namespace std::string_view_literals;

constexpr auto kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"sv;
constexpr auto kDigits = "0123456789"sv;
constexpr auto kTokenMarks = "!#$%&'*+-.^_`|~"sv;

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsOneOf(char c, std::string_view set)
{
    return set.find(c) != std::string_view::npos;
}

bool IsTokenChar(char c)
{
    return IsOneOf(c, kLetters) || IsOneOf(c, kDigits) || IsOneOf(c, kTokenMarks);
}

bool IsHostChar(char c)
{
    // Bytes above 127 are letters of an international name.
    return IsOneOf(c, kLetters) || IsOneOf(c, kDigits) || IsOneOf(c, ".-_:[]"sv) ||
           static_cast<unsigned char>(c) > 127;
}

} // namespace

bool EqualNoCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix)
{
    return EqualNoCase(text.substr(0, prefix.size()), prefix);
}

bool HasHeader(const std::vector<std::pair<std::string, std::string>>& headers, std::string_view name)
{
    return std::any_of(headers.begin(), headers.end(),
                       [name](const auto& header) { return EqualNoCase(header.first, name); });
}

bool BreaksLine(std::string_view text)
{
    return text.find_first_of("\r\n\0"sv) != std::string_view::npos;
}

std::string HeaderLine(const std::string& name, const std::string& value)
{
    if (name.empty() || !std::all_of(name.begin(), name.end(), IsTokenChar))
        throw std::runtime_error("A header name holds characters that are not allowed");
    if (BreaksLine(value))
        throw std::runtime_error("The value of the header " + name + " holds a line break or a NUL");
    // To libcurl "Name:" means "leave it out", and "Name;" a header without a value.
    if (value.find_first_not_of(" \t") == std::string::npos)
        return name + ";";
    return name + ": " + value;
}

std::string UrlOf(const std::string& domain, int port, bool tls, const std::string& path)
{
    if (domain.empty() || !std::all_of(domain.begin(), domain.end(), IsHostChar))
        throw std::runtime_error("The host name is not valid");
    if (port < 1 || port > 65535)
        throw std::runtime_error("The port is not valid");
    if (path.empty() || path.front() != '/' || BreaksLine(path))
        throw std::runtime_error("The path of the request is not valid");
    const bool bareIPv6 = domain.front() != '[' && domain.find(':') != std::string::npos;
    return (tls ? "https://" : "http://") + (bareIPv6 ? "[" + domain + "]" : domain) + ":" +
           std::to_string(port) + path;
}

} // namespace toolkit
