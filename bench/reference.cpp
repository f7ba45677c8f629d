#include "reference.h"

#include <cstdlib>
#include <cstring>

namespace bench
{
namespace
{
constexpr std::size_t kEntrySize = 256;

// Prevents the compiler from optimizing the unused copy away.
void Keep(void* memory)
{
    asm volatile("" : : "r"(memory) : "memory");
}
}  // namespace

void ExtractByIterator(unsigned char* dest, GVariant* value)
{
    GVariant* const inner = g_variant_get_variant(value);
    GVariantIter* bytes = nullptr;
    g_variant_get(inner, "ay", &bytes);
    g_variant_unref(inner);
    guchar byte = 0;
    while (g_variant_iter_next(bytes, "y", &byte)) *dest++ = byte;
    g_variant_iter_free(bytes);
}

GVariant* BuildByIterator(const unsigned char* data, std::size_t size)
{
    GVariantBuilder* const builder = g_variant_builder_new(G_VARIANT_TYPE_BYTESTRING);
    for (std::size_t i = 0; i < size; ++i) g_variant_builder_add(builder, "y", data[i]);
    GVariant* const value = g_variant_new_variant(g_variant_new("ay", builder));
    g_variant_builder_unref(builder);
    return value;
}

PackedNames::PackedNames(const std::vector<std::string>& names)
{
    for (const std::string& name : names)
    {
        text += name;
        lengths.push_back(name.size());
    }
}

void Unpack(const PackedNames& names, std::vector<std::string>& list)
{
    std::vector<std::string>().swap(list);
    const char* next = names.text.data();
    for (const std::size_t length : names.lengths)
    {
        list.emplace_back(next, length);
        next += length;
    }
}

void CopyNamesNaively(const char* entries, std::size_t count, std::vector<std::string>& list)
{
    std::vector<std::string>().swap(list);
    for (std::size_t i = 0; i < count; ++i)
    {
        char entry[kEntrySize];
        std::memcpy(entry, entries + i * kEntrySize, kEntrySize);
        Keep(entry);
        std::string name(entry);
        list.push_back(name);
    }
}

void CopyRaw(const unsigned char* data, std::size_t size)
{
    void* const copy = std::malloc(size);
    std::memcpy(copy, data, size);
    Keep(copy);
    std::free(copy);
}
}  // namespace bench
