#include <gvariant_data.h>

#include <algorithm>
#include <cstring>

#include "internal/variant_bytes.h"

namespace
{
// The position is a 16-bit counter by contract: it wraps here.
constexpr gsize kPositions = 65536;
}  // namespace

GVariant* gvariant_data_build(void* data, int length)
{
    const gsize count = length > 0 ? static_cast<gsize>(length) : 0;
    return g_variant_new_variant(g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data, count, 1));
}

void gvariant_data_extract(void* dest, GVariant* value)
{
    const qbx::VariantBytes bytes(value);
    for (gsize begin = 0; begin < bytes.count(); begin += kPositions)
        std::memcpy(dest, bytes.data() + begin, std::min(bytes.count() - begin, kPositions));
}

void gvariant_data_extract(std::vector<unsigned char>& dest, GVariant* value)
{
    const qbx::VariantBytes bytes(value);
    dest.insert(dest.end(), bytes.data(), bytes.data() + bytes.count());
}
