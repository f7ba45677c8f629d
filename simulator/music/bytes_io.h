/// @file
/// Numbers and texts one after the other, for a file that only this machine reads.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ipodsim
{
class ByteWriter
{
public:
    template <class Number>
    void Put(Number number)
    {
        char bytes[sizeof(number)];
        std::memcpy(bytes, &number, sizeof(number));
        m_bytes.append(bytes, sizeof(number));
    }
    void Put(const std::string& text)
    {
        Put(static_cast<std::uint32_t>(text.size()));
        m_bytes += text;
    }
    const std::string& Bytes() const { return m_bytes; }

private:
    std::string m_bytes;
};

/// Every reading throws std::out_of_range when there is not enough left.
class ByteReader
{
public:
    explicit ByteReader(std::string_view bytes) : m_left(bytes) {}

    template <class Number>
    Number Take()
    {
        Number number{};
        std::memcpy(&number, TakeBytes(sizeof(number)).data(), sizeof(number));
        return number;
    }
    std::string TakeText() { return std::string(TakeBytes(Take<std::uint32_t>())); }

private:
    std::string_view TakeBytes(std::size_t count)
    {
        if (count > m_left.size()) throw std::out_of_range("the bytes end too early");
        const std::string_view taken = m_left.substr(0, count);
        m_left.remove_prefix(count);
        return taken;
    }

    std::string_view m_left;
};

/// FNV-1a of 64 bits: a different number for nearly every text.
inline std::uint64_t Fingerprint(std::string_view text)
{
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}
}  // namespace ipodsim
