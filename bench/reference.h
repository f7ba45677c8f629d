/// @file
/// Baselines for the library's internals: the simplest fast implementations, and rejected alternatives.
#pragma once

#include <glib.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench
{
/// An iterator over the bytes of a "v" holding an "ay", and a builder that appends them one by one.
void ExtractByIterator(unsigned char* dest, GVariant* value);
GVariant* BuildByIterator(const unsigned char* data, std::size_t size);

/// Contiguous names of known lengths.
struct PackedNames
{
    explicit PackedNames(const std::vector<std::string>& names);

    std::string text;
    std::vector<std::size_t> lengths;
};

/// Replaces @p list with the names.
void Unpack(const PackedNames& names, std::vector<std::string>& list);

/// Replaces @p list with the names of 256-byte entries: copies each entry to the stack, then to a string, then to the
/// list.
void CopyNamesNaively(const char* entries, std::size_t count, std::vector<std::string>& list);

/// malloc, memcpy, free.
void CopyRaw(const unsigned char* data, std::size_t size);
}  // namespace bench
