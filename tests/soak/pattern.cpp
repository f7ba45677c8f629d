#include "pattern.h"

#include <algorithm>
#include <cstring>

namespace soak
{
namespace
{
std::uint64_t Scrambled(std::uint64_t state)
{
    state ^= state << 13;
    state ^= state >> 7;
    return state ^ state << 17;
}
}  // namespace

Bytes Payload(std::uint64_t number, std::size_t largest)
{
    std::uint64_t word = number * 0x9e3779b97f4a7c15U + 1;
    Bytes bytes(1 + static_cast<std::size_t>(Scrambled(word) % largest));
    for (std::size_t at = 0; at < bytes.size(); at += sizeof(word))
    {
        word = Scrambled(word);
        std::memcpy(&bytes[at], &word, std::min(sizeof(word), bytes.size() - at));
    }
    return bytes;
}

std::size_t ChangedBytes(const unsigned char* bytes, std::size_t size, std::uint64_t number, std::size_t largest)
{
    const Bytes wanted = Payload(number, largest);
    const std::size_t common = std::min(size, wanted.size());
    std::size_t changed = std::max(size, wanted.size()) - common;
    if (common == 0 || std::memcmp(bytes, wanted.data(), common) == 0) return changed;
    for (std::size_t i = 0; i < common; ++i) changed += bytes[i] != wanted[i];
    return changed;
}

std::string Name(int index)
{
    const std::string number = std::to_string(index);
    return number + " " + std::string(static_cast<std::size_t>(10 + index % 200), static_cast<char>('a' + index % 26));
}
}  // namespace soak
