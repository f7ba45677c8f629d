/// @file
/// What the library's inside is compared with: the plainest fast form, and the forms that were not chosen.
#pragma once

#include <glib.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench
{
/// An iterator over the bytes of a "v" holding an "ay", and a builder that takes them one by one.
void ExtractByIterator(unsigned char* dest, GVariant* value);
GVariant* BuildByIterator(const unsigned char* data, std::size_t size);

/// Names one behind the other, their lengths known.
struct PackedNames
{
    explicit PackedNames(const std::vector<std::string>& names);

    std::string text;
    std::vector<std::size_t> lengths;
};

/// Replaces @p list by the names.
void Unpack(const PackedNames& names, std::vector<std::string>& list);

/// Replaces @p list by the names of 256-byte entries: whole entry to the stack, then to a string, then to the list.
void CopyNamesNaively(const char* entries, std::size_t count, std::vector<std::string>& list);

/// malloc, memcpy, free.
void CopyRaw(const unsigned char* data, std::size_t size);
}  // namespace bench
