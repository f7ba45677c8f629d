/// @file
/// A second parser for serialized messages, written from the wire format, not from the library's code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace fuzz
{
/// The type of a known field.
enum class Kind
{
    Text,
    Number,
    Enumeration,
};

struct Field
{
    Kind kind;
    int largest = 0;  ///< largest value of an enumeration that starts at 0
};

using Fields = std::map<std::uint32_t, Field>;

/// The values of known fields by number, without those of another wire type or outside their enumeration.
struct Message
{
    std::map<std::uint32_t, std::string> texts;
    std::map<std::uint32_t, std::uint64_t> numbers;
};

/// Empty if the bytes are not a valid message.
std::optional<Message> ReadMessage(const std::uint8_t* data, std::size_t size, const Fields& fields);
}  // namespace fuzz
