#include "support/variant_text.h"

#include <cstdio>

#include "support/text.h"

namespace test
{
std::string BytesInVariant(const std::string& bytes)
{
    if (bytes.empty()) return "<@ay []>";
    std::vector<std::string> parts;
    char part[8];
    for (const char byte : bytes)
    {
        std::snprintf(part, sizeof(part), "0x%02x", static_cast<unsigned char>(byte));
        parts.emplace_back(part);
    }
    return "<[byte " + Join(parts, ", ") + "]>";
}

std::string TrackRecord(const std::vector<std::string>& texts, const std::vector<std::int32_t>& values)
{
    std::string record;
    for (const std::string& text : texts) record += text + std::string(256 - text.size(), '\0');
    return record + Words({values.begin(), values.end()});
}

std::string Words(const std::vector<std::uint32_t>& words)
{
    std::string bytes;
    for (const std::uint32_t word : words)
        for (const unsigned shift : {0U, 8U, 16U, 24U}) bytes += static_cast<char>(word >> shift & 0xff);
    return bytes;
}
}  // namespace test
