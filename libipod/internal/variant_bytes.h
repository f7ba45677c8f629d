/// @file
/// The bytes inside a "v" that holds an "ay", in place.
#pragma once

#include <glib.h>

namespace qbx
{
/// Keeps the inner value alive while its bytes are read. Empty for a null pointer and for any other type: a sender may
/// put any type into a variant.
class VariantBytes
{
public:
    explicit VariantBytes(GVariant* value);
    ~VariantBytes();
    VariantBytes(const VariantBytes&) = delete;
    VariantBytes& operator=(const VariantBytes&) = delete;

    const unsigned char* data() const { return m_data; }
    gsize count() const { return m_size; }

private:
    GVariant* m_inner = nullptr;
    const unsigned char* m_data = nullptr;
    gsize m_size = 0;
};
}  // namespace qbx
