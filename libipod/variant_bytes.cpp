#include "internal/variant_bytes.h"

namespace qbx
{
VariantBytes::VariantBytes(GVariant* value)
{
    if (value == nullptr || !g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) return;
    m_inner = g_variant_get_variant(value);
    if (!g_variant_is_of_type(m_inner, G_VARIANT_TYPE_BYTESTRING)) return;
    m_data = static_cast<const unsigned char*>(g_variant_get_fixed_array(m_inner, &m_size, 1));
}

VariantBytes::~VariantBytes()
{
    if (m_inner != nullptr) g_variant_unref(m_inner);
}
}  // namespace qbx
