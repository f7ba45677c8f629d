/// @file
/// Where in a JSON text a value stands.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ipodsim
{
/// Both from 1; columns count bytes.
struct Place
{
    unsigned line = 1;
    unsigned column = 1;
};

/// The place of a byte of a text.
Place PlaceAt(std::string_view text, std::size_t byte);

/// The place of a value. @p path names members and, as numbers, elements from the root on. Where a member is missing it
/// is the place of the object that should have it.
/// @param json  valid JSON
Place PlaceOf(std::string_view json, const std::vector<std::string>& path);
}  // namespace ipodsim
