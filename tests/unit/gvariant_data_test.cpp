// Packing and unpacking of byte records.
#include <gtest/gtest.h>
#include <gvariant_data.h>

#include "variants.h"

using test::Boxed;
using test::Own;
using test::Packed;
using test::Pattern;
using test::VariantPtr;
using Bytes = std::vector<unsigned char>;

namespace
{
constexpr unsigned char kUntouched = 0xEE;

Bytes Unpacked(const VariantPtr& boxed)
{
    const VariantPtr inner(g_variant_get_variant(boxed.get()));
    gsize count = 0;
    const auto* const first = static_cast<const unsigned char*>(g_variant_get_fixed_array(inner.get(), &count, 1));
    return Bytes(first, first + count);
}

class BuildOfLength : public testing::TestWithParam<int>
{
};

class ExtractOfLength : public testing::TestWithParam<int>
{
};

// Invalid values that a sender may use instead of a "v" holding an "ay".
std::vector<VariantPtr> WrongTypes()
{
    std::vector<VariantPtr> values;
    values.push_back(Own(g_variant_new_string("text")));
    values.push_back(Own(g_variant_new_bytestring("not in a v")));
    values.push_back(Own(g_variant_new("(yy)", 1, 2)));
    values.push_back(Boxed(g_variant_new_string("text")));
    values.push_back(Boxed(g_variant_new_parsed("[1, 2, 3]")));
    values.push_back(Boxed(g_variant_new_parsed("@a(y) [(1,), (2,)]")));
    values.push_back(Boxed(g_variant_new("(ays)", nullptr, "text")));
    values.push_back(Boxed(g_variant_new_variant(g_variant_new_bytestring("nested too deeply"))));
    return values;
}
}  // namespace

TEST_P(BuildOfLength, HoldsExactlyTheGivenBytes)
{
    const int length = GetParam();
    Bytes bytes = Pattern(static_cast<std::size_t>(length) + 1);

    const VariantPtr value = Own(gvariant_data_build(bytes.data(), length));

    ASSERT_STREQ("v", g_variant_get_type_string(value.get()));
    bytes.pop_back();
    EXPECT_EQ(bytes, Unpacked(value));
}

INSTANTIATE_TEST_SUITE_P(Lengths, BuildOfLength, testing::Values(0, 1, 12, 512, 65536, 70000));

TEST(GvariantDataBuild, ReturnsAnEmptyArrayForANegativeLengthWithoutReading)
{
    for (const int length : {0, -1, -5, G_MININT})
    {
        const VariantPtr value = Own(gvariant_data_build(nullptr, length));

        EXPECT_STREQ("v", g_variant_get_type_string(value.get()));
        const VariantPtr inner(g_variant_get_variant(value.get()));
        EXPECT_STREQ("ay", g_variant_get_type_string(inner.get()));
        EXPECT_EQ(0u, g_variant_n_children(inner.get()));
    }
}

TEST(GvariantDataBuild, ReturnsAFloatingReference)
{
    unsigned char byte = 7;
    GVariant* const value = gvariant_data_build(&byte, 1);

    EXPECT_TRUE(g_variant_is_floating(value));

    g_variant_unref(g_variant_ref_sink(value));
}

TEST(GvariantDataBuild, KeepsACopyOfTheBytes)
{
    Bytes bytes = Pattern(12);
    const Bytes before = bytes;

    const VariantPtr value = Own(gvariant_data_build(bytes.data(), 12));
    bytes.assign(12, 0);

    EXPECT_EQ(before, Unpacked(value));
}

TEST_P(ExtractOfLength, FillsTheFrontOfTheMemoryAndLeavesTheRest)
{
    const auto length = static_cast<std::size_t>(GetParam());
    const VariantPtr value = Packed(Pattern(length));
    Bytes dest(length + 16, kUntouched);

    gvariant_data_extract(dest.data(), value.get());

    Bytes expected = Pattern(length);
    expected.resize(length + 16, kUntouched);
    EXPECT_EQ(expected, dest);
}

TEST_P(ExtractOfLength, AppendsToAVector)
{
    const auto length = static_cast<std::size_t>(GetParam());
    const VariantPtr value = Packed(Pattern(length));
    Bytes dest = {9, 8, 7};

    gvariant_data_extract(dest, value.get());

    ASSERT_EQ(length + 3, dest.size());
    EXPECT_EQ((Bytes{9, 8, 7}), Bytes(dest.begin(), dest.begin() + 3));
    EXPECT_EQ(Pattern(length), Bytes(dest.begin() + 3, dest.end()));
}

INSTANTIATE_TEST_SUITE_P(Lengths, ExtractOfLength, testing::Values(0, 1, 12, 512, 65535, 65536));

TEST(GvariantDataExtract, WrapsAroundAfter65536Bytes)
{
    const Bytes sent = Pattern(70000);
    Bytes dest(70000, kUntouched);

    gvariant_data_extract(dest.data(), Packed(sent).get());

    Bytes expected(70000, kUntouched);
    for (std::size_t n = 0; n < sent.size(); ++n) expected[n % 65536] = sent[n];
    EXPECT_EQ(expected, dest);
    EXPECT_EQ(sent[65536], dest[0]);
    EXPECT_EQ(sent[69999], dest[4463]);
    EXPECT_EQ(sent[4464], dest[4464]);
}

TEST(GvariantDataExtract, AppendsMoreThan65536BytesToAVectorInOrder)
{
    Bytes dest;

    gvariant_data_extract(dest, Packed(Pattern(70000)).get());

    EXPECT_EQ(Pattern(70000), dest);
}

TEST(GvariantDataExtract, LeavesTheDestinationUnchangedForANullPointer)
{
    Bytes memory(4, kUntouched);
    Bytes vector = {1, 2};

    gvariant_data_extract(memory.data(), nullptr);
    gvariant_data_extract(vector, nullptr);

    EXPECT_EQ(Bytes(4, kUntouched), memory);
    EXPECT_EQ((Bytes{1, 2}), vector);
}

TEST(GvariantDataExtract, LeavesTheDestinationUnchangedForAnotherType)
{
    for (const VariantPtr& value : WrongTypes())
    {
        SCOPED_TRACE(g_variant_get_type_string(value.get()));
        Bytes memory(64, kUntouched);
        Bytes vector = {1, 2};

        gvariant_data_extract(memory.data(), value.get());
        gvariant_data_extract(vector, value.get());

        EXPECT_EQ(Bytes(64, kUntouched), memory);
        EXPECT_EQ((Bytes{1, 2}), vector);
    }
}

TEST(GvariantDataExtract, DoesNotReleaseTheValue)
{
    const VariantPtr value = Packed(Pattern(16));
    Bytes dest;

    gvariant_data_extract(dest, value.get());
    gvariant_data_extract(dest, value.get());

    EXPECT_EQ(32u, dest.size());
    EXPECT_EQ(Pattern(16), Unpacked(value));
}

TEST(GvariantDataExtract, KeepsNoReferenceToTheBytes)
{
    alignas(8) static const char serialized[] = "\x01\x02\0ay";
    bool released = false;
    {
        const VariantPtr value = Own(g_variant_new_from_data(
            G_VARIANT_TYPE_VARIANT, serialized, sizeof(serialized) - 1, TRUE,
            [](gpointer flag) { *static_cast<bool*>(flag) = true; }, &released));
        Bytes memory(2);
        Bytes vector;

        gvariant_data_extract(memory.data(), value.get());
        gvariant_data_extract(vector, value.get());

        EXPECT_EQ((Bytes{1, 2}), memory);
        EXPECT_EQ((Bytes{1, 2}), vector);
    }
    EXPECT_TRUE(released);
}

TEST(GvariantDataExtract, ReadsAnUnalignedValueFromTheWire)
{
    const VariantPtr whole = Own(g_variant_new("(yv)", 1, g_variant_new_bytestring("wire")));
    const VariantPtr copy = Own(g_variant_new_from_bytes(
        G_VARIANT_TYPE("(yv)"),
        std::unique_ptr<GBytes, decltype(&g_bytes_unref)>(g_variant_get_data_as_bytes(whole.get()), g_bytes_unref)
            .get(),
        FALSE));
    const VariantPtr value(g_variant_get_child_value(copy.get(), 1));
    Bytes dest;

    gvariant_data_extract(dest, value.get());

    EXPECT_EQ((Bytes{'w', 'i', 'r', 'e', 0}), dest);
}
