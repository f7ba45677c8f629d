// The exported helpers that pack raw bytes into variants and unpack them.
#include <gmock/gmock.h>
#include <gvariant_data.h>

#include <memory>
#include <numeric>
#include <string>

namespace
{
using Bytes = std::vector<unsigned char>;
using Variant = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;
using testing::ElementsAre;

Variant Own(GVariant* floating)
{
    return {g_variant_ref_sink(floating), g_variant_unref};
}

Variant Holding(Bytes bytes)
{
    return Own(g_variant_new_variant(g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1)));
}

std::string Print(const Variant& value)
{
    gchar* const text = g_variant_print(value.get(), TRUE);
    std::string printed = text;
    g_free(text);
    return printed;
}

TEST(RecordVariantTest, BuildsAVariantThatHoldsTheBytes)
{
    unsigned char bytes[] = {0, 1, 255};

    EXPECT_EQ(Print(Own(gvariant_data_build(bytes, 3))), "<[byte 0x00, 0x01, 0xff]>");
}

TEST(RecordVariantTest, BuildsAFloatingReference)
{
    unsigned char byte = 1;
    GVariant* const value = gvariant_data_build(&byte, 1);

    EXPECT_TRUE(g_variant_is_floating(value));
    g_variant_unref(g_variant_ref_sink(value));
}

TEST(RecordVariantTest, BuildsAnEmptyArrayForNonPositiveLengths)
{
    auto* const nowhere = reinterpret_cast<void*>(1);

    for (const int length : {0, -5}) EXPECT_EQ(Print(Own(gvariant_data_build(nowhere, length))), "<@ay []>");
}

TEST(RecordVariantTest, BuildsWhatItExtracts)
{
    Bytes bytes(70000);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(3));
    Bytes extracted;

    gvariant_data_extract(extracted, Own(gvariant_data_build(bytes.data(), 70000)).get());

    EXPECT_EQ(extracted, bytes);
}

TEST(RecordVariantTest, ExtractsIntoMemoryAndLeavesTheRest)
{
    unsigned char memory[] = {9, 9, 9, 9};

    gvariant_data_extract(memory, Holding({1, 2}).get());

    EXPECT_THAT(memory, ElementsAre(1, 2, 9, 9));
}

TEST(RecordVariantTest, ExtractsIntoMemoryWithAPositionOf16Bits)
{
    Bytes bytes(70000);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i / 256);
    Bytes memory(70000, 0xee);

    gvariant_data_extract(memory.data(), Holding(bytes).get());

    for (std::size_t i = 0; i < 4464; ++i) ASSERT_EQ(memory[i], bytes[i + 65536]) << i;
    for (std::size_t i = 4464; i < 65536; ++i) ASSERT_EQ(memory[i], bytes[i]) << i;
    for (std::size_t i = 65536; i < 70000; ++i) ASSERT_EQ(memory[i], 0xee) << i;
}

TEST(RecordVariantTest, ExtractsOntoTheEndOfAVector)
{
    Bytes vector = {7, 8, 9};

    gvariant_data_extract(vector, Holding({1, 2}).get());

    EXPECT_THAT(vector, ElementsAre(7, 8, 9, 1, 2));
}

TEST(RecordVariantTest, ExtractsNothingFromAnEmptyArray)
{
    unsigned char memory[] = {9};
    Bytes vector = {8};

    gvariant_data_extract(memory, Holding({}).get());
    gvariant_data_extract(vector, Holding({}).get());

    EXPECT_THAT(memory, ElementsAre(9));
    EXPECT_THAT(vector, ElementsAre(8));
}

TEST(RecordVariantTest, ExtractsNothingFromNullAndFromOtherTypes)
{
    unsigned char memory[] = {9};
    Bytes vector = {8};
    for (const char* const text : {"'text'", "[byte 1]", "<'text'>", "<<[byte 1]>>", "<[1]>"})
    {
        const Variant value = Own(g_variant_new_parsed(text));

        gvariant_data_extract(memory, value.get());
        gvariant_data_extract(vector, value.get());
    }
    gvariant_data_extract(memory, nullptr);
    gvariant_data_extract(vector, nullptr);

    EXPECT_THAT(memory, ElementsAre(9));
    EXPECT_THAT(vector, ElementsAre(8));
}

TEST(RecordVariantTest, DoesNotReleaseTheValue)
{
    const Variant value = Holding({1});
    Bytes vector;

    gvariant_data_extract(vector, value.get());
    gvariant_data_extract(vector, value.get());

    EXPECT_THAT(vector, ElementsAre(1, 1));
    EXPECT_EQ(Print(value), "<[byte 0x01]>");
}
}  // namespace
