#include "support/text.h"

namespace test
{
std::string Text(int number)
{
    return std::to_string(number);
}

std::string Text(unsigned number)
{
    return std::to_string(number);
}

std::string Text(std::uint64_t number)
{
    return std::to_string(number);
}

std::string Text(bool flag)
{
    return flag ? "true" : "false";
}

std::string Text(const std::string& text)
{
    return "\"" + text + "\"";
}

std::string Text(const std::vector<std::string>& texts)
{
    std::vector<std::string> parts;
    for (const std::string& text : texts) parts.push_back(Text(text));
    return "[" + Join(parts, ", ") + "]";
}

std::string Text(const std::vector<unsigned char>& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::vector<std::string> parts;
    for (const unsigned char byte : bytes) parts.push_back({digits[byte / 16], digits[byte % 16]});
    return "[" + Join(parts, " ") + "]";
}

std::string Text(const QBXiPodTrackInfo& info)
{
    return Join({Text(info.text1), Text(info.text2), Text(info.text3), Text(info.text4), Text(info.value1),
                 Text(info.value2), Text(info.value3), Text(info.value4)},
                ", ");
}

std::string Text(const QBXTrackArtwork& artwork)
{
    return Join(
        {Text(artwork.word1), Text(artwork.word2), Text(artwork.word3), Text(artwork.word4), Text(artwork.image)},
        ", ");
}

std::string Join(const std::vector<std::string>& parts, const char* between)
{
    std::string joined;
    for (const std::string& part : parts) joined += (joined.empty() ? "" : between) + part;
    return joined;
}
}  // namespace test
