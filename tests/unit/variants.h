/// @file
/// Variants as the service sends them, and recognizable byte patterns.
#pragma once

#include <glib.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace test
{
struct ReleaseVariant
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, ReleaseVariant>;

/// Consumes a floating reference.
inline VariantPtr Own(GVariant* value)
{
    return VariantPtr(g_variant_ref_sink(value));
}

/// A "v" around any value.
inline VariantPtr Boxed(GVariant* inner)
{
    return Own(g_variant_new_variant(inner));
}

/// A "v" holding an "ay", built without the code under test.
inline VariantPtr Packed(const std::vector<unsigned char>& bytes)
{
    return Boxed(g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), sizeof(bytes[0])));
}

/// @p count bytes, none of them 0, that repeat with a period of 251, so that a shift by a power of two shows.
inline std::vector<unsigned char> Pattern(std::size_t count)
{
    std::vector<unsigned char> bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(1 + i % 251);
    return bytes;
}
}  // namespace test
