#include "reference_message.h"

namespace fuzz
{
namespace
{
constexpr int kDeepestGroup = 100;
constexpr std::uint64_t kLongest = 0x7fffffff;

enum WireType : std::uint32_t
{
    kVarint = 0,
    kFixed64 = 1,
    kBytes = 2,
    kGroup = 3,
    kEndOfGroup = 4,
    kFixed32 = 5,
};

class Reader
{
public:
    Reader(const std::uint8_t* data, std::size_t size, const Fields& fields)
        : m_next(data), m_end(data + size), m_fields(fields)
    {
    }

    std::optional<Message> Read()
    {
        while (m_next != m_end)
            if (!ReadField()) return std::nullopt;
        return m_message;
    }

private:
    std::size_t Left() const { return static_cast<std::size_t>(m_end - m_next); }

    // Reads at most @p longest bytes; bits beyond the 64th are dropped.
    std::optional<std::uint64_t> ReadVarint(int longest)
    {
        std::uint64_t value = 0;
        for (int i = 0; i < longest && m_next != m_end; ++i)
        {
            const std::uint8_t byte = *m_next++;
            value |= static_cast<std::uint64_t>(byte & 0x7f) << 7 * i;
            if (byte < 0x80) return value;
        }
        return std::nullopt;
    }

    bool Skip(std::uint64_t count)
    {
        if (count > Left()) return false;
        m_next += count;
        return true;
    }

    std::optional<std::string> ReadBytes()
    {
        const auto size = ReadVarint(5);
        if (!size || *size > kLongest || *size > Left()) return std::nullopt;
        const std::string bytes(reinterpret_cast<const char*>(m_next), *size);
        m_next += *size;
        return bytes;
    }

    bool ReadField()
    {
        const auto tag = ReadVarint(5);
        if (!tag) return false;
        const auto number = static_cast<std::uint32_t>(*tag) >> 3;
        const auto type = static_cast<std::uint32_t>(*tag) & 7;
        const auto known = m_fields.find(number);
        if (known == m_fields.end()) return SkipField(number, type, kDeepestGroup);
        if (type == kBytes && known->second.kind == Kind::Text) return ReadText(number);
        if (type == kVarint && known->second.kind != Kind::Text) return ReadNumber(number, known->second);
        return SkipField(number, type, kDeepestGroup);
    }

    bool ReadText(std::uint32_t number)
    {
        const auto text = ReadBytes();
        if (text) m_message.texts[number] = *text;
        return text.has_value();
    }

    bool ReadNumber(std::uint32_t number, const Field& field)
    {
        const auto value = ReadVarint(10);
        if (!value) return false;
        const bool legal = field.kind == Kind::Number ||
                           static_cast<std::uint32_t>(*value) <= static_cast<std::uint32_t>(field.largest);
        if (legal) m_message.numbers[number] = *value;
        return true;
    }

    bool SkipField(std::uint32_t number, std::uint32_t type, int depth)
    {
        if (number == 0) return false;
        switch (type)
        {
            case kVarint:
                return ReadVarint(10).has_value();
            case kFixed64:
                return Skip(8);
            case kBytes:
                return ReadBytes().has_value();
            case kGroup:
                return SkipGroup(number, depth - 1);
            case kFixed32:
                return Skip(4);
            default:
                return false;
        }
    }

    bool SkipGroup(std::uint32_t group, int depth)
    {
        if (depth < 0) return false;
        while (m_next != m_end)
        {
            const auto tag = ReadVarint(5);
            if (!tag) return false;
            const auto number = static_cast<std::uint32_t>(*tag) >> 3;
            const auto type = static_cast<std::uint32_t>(*tag) & 7;
            if (type == kEndOfGroup) return number == group;
            if (!SkipField(number, type, depth)) return false;
        }
        return false;
    }

    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
    const Fields& m_fields;
    Message m_message;
};
}  // namespace

std::optional<Message> ReadMessage(const std::uint8_t* data, std::size_t size, const Fields& fields)
{
    return Reader(data, size, fields).Read();
}
}  // namespace fuzz
