#include "models/LooseJson.h"

#include <QtGlobal>

#include <algorithm>
#include <charconv>
#include <cstring>

std::string strictJson(std::string_view part, std::size_t limit)
{
    std::string result;
    result.reserve(std::min(part.size(), limit) + 64);
    const auto codeUnit = [&](std::size_t at) {
        quint32 unit = 0;
        const bool escaped = part.substr(std::min(at, part.size()), 2) == "\\u" && at + 6 <= part.size();
        if (!escaped || std::from_chars(&part[at + 2], &part[at + 2] + 4, unit, 16).ptr != &part[at + 2] + 4)
            return 0U;
        return unit;
    };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    bool inText = false;
    for (std::size_t at = 0; at < part.size() && result.size() <= limit; ++at) {
        const char c = part[at];
        if (c == '"') {
            inText = !inText;
            result += c;
        } else if (inText && static_cast<unsigned char>(c) < 0x20) {
            constexpr char digits[] = "0123456789abcdef";
            result += {'\\', 'u', '0', '0', digits[c / 16], digits[c % 16]};
        } else if (inText && c == '\\' && at + 1 < part.size()) {
            const quint32 unit = codeUnit(at);
            const bool high = (unit & 0xfc00) == 0xd800;
            if (high && (codeUnit(at + 6) & 0xfc00) == 0xdc00) {
                result += part.substr(at, 12);
                at += 11;
            } else if (high || (unit & 0xfc00) == 0xdc00) {
                result += "\\ufffd";
                at += 5;
            } else if (std::string_view("\"\\/bfnrtu").find(part[at + 1]) != std::string_view::npos) {
                result += part.substr(at++, 2);
            }
        } else if (!inText && (isDigit(c) || c == '-')) {
            std::size_t end = at + 1;
            while (end < part.size() && isDigit(part[end]))
                ++end;
            result += part.substr(at, end - at);
            qint64 number = 0;
            const bool whole = end >= part.size() || !std::strchr(".eE", part[end]);
            if (whole && std::from_chars(&part[at], &part[at] + (end - at), number).ec ==
                             std::errc::result_out_of_range)
                result += "e0";
            at = end - 1;
        } else {
            result += c;
        }
    }
    return result;
}
