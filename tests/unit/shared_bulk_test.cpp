// Reading the shared vectors: a single load, a check against the mapping, then a copy.
#include "internal/shared_bulk.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace
{
// A vector as a faulty process may leave it: any pointer, any size.
template <class Element>
struct Claim
{
    using value_type = Element;

    const Element* pointer;
    std::size_t count;

    const Element* data() const { return pointer; }
    std::size_t size() const { return count; }
};

using ByteClaim = Claim<unsigned char>;
using NameClaim = Claim<PlayListSongNameStr>;

class Snapshots : public testing::Test
{
protected:
    const unsigned char* At(std::size_t offset) const { return m_memory + 64 + offset; }

    bool Accepts(const ByteClaim& claim) const
    {
        const auto snapshot = qbx::TakeSnapshot(&claim, m_mapping);
        return snapshot.begin == claim.pointer && snapshot.count == claim.count;
    }

    bool Refuses(const ByteClaim& claim) const
    {
        const auto snapshot = qbx::TakeSnapshot(&claim, m_mapping);
        return snapshot.begin == nullptr && snapshot.count == 0;
    }

    // The mapping is in the middle, so that pointers outside it are valid pointers, too.
    unsigned char m_memory[64 + 1024 + 64] = {};
    qbx::Mapping m_mapping{reinterpret_cast<const char*>(m_memory) + 64,
                           reinterpret_cast<const char*>(m_memory) + 64 + 1024};
};

PlayListSongNameStr Name(const std::string& text, char rest = '\0')
{
    PlayListSongNameStr entry;
    std::memset(entry.name, rest, sizeof(entry.name));
    text.copy(entry.name, sizeof(entry.name));
    if (text.size() < sizeof(entry.name)) entry.name[text.size()] = '\0';
    return entry;
}

std::vector<std::string> NamesIn(const std::vector<PlayListSongNameStr>& entries)
{
    std::vector<std::string> list = {"left over"};
    qbx::CopyNames({entries.data(), entries.size()}, list);
    return list;
}
}  // namespace

TEST_F(Snapshots, CoverElementsInsideTheMapping)
{
    EXPECT_TRUE(Accepts({At(0), 1024}));
    EXPECT_TRUE(Accepts({At(0), 0}));
    EXPECT_TRUE(Accepts({At(1), 1023}));
    EXPECT_TRUE(Accepts({At(1023), 1}));
}

TEST_F(Snapshots, AreEmptyIfTheVectorReachesBeyondTheMapping)
{
    EXPECT_TRUE(Refuses({At(0), 1025}));
    EXPECT_TRUE(Refuses({At(1), 1024}));
    EXPECT_TRUE(Refuses({At(1023), 2}));
    EXPECT_TRUE(Refuses({At(1), std::numeric_limits<std::size_t>::max()}));
}

TEST_F(Snapshots, AreEmptyIfTheVectorStartsOutsideTheMapping)
{
    EXPECT_TRUE(Refuses({At(0) - 1, 1}));
    EXPECT_TRUE(Refuses({At(1024), 0}));
    EXPECT_TRUE(Refuses({At(1024), 1}));
    EXPECT_TRUE(Refuses({nullptr, 0}));
    EXPECT_TRUE(Refuses({nullptr, 10}));
    EXPECT_TRUE(Refuses({reinterpret_cast<const unsigned char*>(std::numeric_limits<std::uintptr_t>::max()), 1}));
}

TEST_F(Snapshots, CountWholeElements)
{
    const auto* const first = reinterpret_cast<const PlayListSongNameStr*>(At(0));
    const auto* const shifted = reinterpret_cast<const PlayListSongNameStr*>(At(1));
    const std::size_t wrapping = std::numeric_limits<std::size_t>::max() / sizeof(PlayListSongNameStr) + 2;
    const NameClaim fits{first, 4};
    const NameClaim tooMany{first, 5};
    const NameClaim reachesOut{shifted, 4};
    const NameClaim overflows{first, wrapping};

    EXPECT_EQ(4u, qbx::TakeSnapshot(&fits, m_mapping).count);
    EXPECT_EQ(0u, qbx::TakeSnapshot(&tooMany, m_mapping).count);
    EXPECT_EQ(0u, qbx::TakeSnapshot(&reachesOut, m_mapping).count);
    EXPECT_EQ(0u, qbx::TakeSnapshot(&overflows, m_mapping).count);
}

TEST_F(Snapshots, AreEmptyWithoutAVectorOrWithoutAMapping)
{
    const ByteClaim claim{At(0), 16};

    EXPECT_EQ(nullptr, qbx::TakeSnapshot<ByteClaim>(nullptr, m_mapping).begin);
    EXPECT_EQ(nullptr, qbx::TakeSnapshot(&claim, qbx::Mapping{}).begin);
}

TEST_F(Snapshots, MustBeInsideTheMappingOnlyIfTheVectorIs)
{
    const auto isHeld = [this](const void* vector)
    {
        const qbx::Mapping bounds = qbx::BoundsOf(vector, m_mapping);
        return bounds.begin == m_mapping.begin && bounds.end == m_mapping.end;
    };

    EXPECT_TRUE(isHeld(At(0)));
    EXPECT_TRUE(isHeld(At(1023)));
    EXPECT_FALSE(isHeld(At(0) - 1));
    EXPECT_FALSE(isHeld(At(1024)));
    const qbx::Mapping anywhere = qbx::BoundsOf(At(1024), m_mapping);
    EXPECT_EQ(nullptr, anywhere.begin);
    EXPECT_EQ(std::numeric_limits<std::uintptr_t>::max(), reinterpret_cast<std::uintptr_t>(anywhere.end));
}

TEST(CopyNames, PassesBytesThroughUnchanged)
{
    const std::string bytes = "\xFF\xFE\x01\x80 \xE5\x91\xA8";

    EXPECT_EQ(std::vector<std::string>{bytes}, NamesIn({Name(bytes)}));
}

TEST(CopyNames, FreesTheListIfThereAreNoNames)
{
    std::vector<std::string> list(1000, "old");

    qbx::CopyNames({}, list);

    EXPECT_TRUE(list.empty());
    EXPECT_EQ(0u, list.capacity());
}

TEST(CopyNames, GrowsTheListAsIfItWereNew)
{
    const std::vector<PlayListSongNameStr> entries(100, Name("n"));
    std::vector<std::string> list(5000, "old");
    std::vector<std::string> grown;
    for (int i = 0; i < 100; ++i) grown.emplace_back("n");

    qbx::CopyNames({entries.data(), entries.size()}, list);

    EXPECT_EQ(grown, list);
    EXPECT_EQ(grown.capacity(), list.capacity());
}

TEST(CopyBytes, CopiesAllOrNothing)
{
    const std::vector<unsigned char> bytes = {0, 1, 255, 0};

    EXPECT_EQ(bytes, qbx::CopyBytes({bytes.data(), bytes.size()}));
    EXPECT_TRUE(qbx::CopyBytes({}).empty());
}
