#include "output/hexdump.h"

#include <algorithm>
#include <cstdio>

namespace ctl
{
namespace
{
constexpr std::size_t kPerLine = 16;
constexpr std::size_t kHalf = kPerLine / 2;

std::string Digits(std::string_view bytes)
{
    std::string text;
    char digits[4];
    for (std::size_t i = 0; i < kPerLine; ++i)
    {
        const bool there = i < bytes.size();
        if (there) std::snprintf(digits, sizeof(digits), " %02x", static_cast<unsigned char>(bytes[i]));
        text += (i == kHalf ? " " : "") + std::string(there ? digits : "   ");
    }
    return text;
}

std::string Characters(std::string_view bytes)
{
    std::string text(bytes);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '.');
    return text;
}
}  // namespace

std::string Hex(std::string_view bytes)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes)
    {
        text += kDigits[static_cast<unsigned char>(byte) >> 4];
        text += kDigits[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

std::string Hexdump(std::string_view bytes)
{
    std::string text;
    char place[24];
    for (std::size_t at = 0; at < bytes.size(); at += kPerLine)
    {
        const std::string_view part = bytes.substr(at, kPerLine);
        std::snprintf(place, sizeof(place), "%08zx", at);
        text += (at == 0 ? "" : "\n") + std::string(place) + " " + Digits(part) + "  |" + Characters(part) + "|";
    }
    return text;
}
}  // namespace ctl
