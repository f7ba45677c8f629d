// Filling the write buffer in bulk must leave the segment exactly as appending byte by byte would, because the service
// shares its memory. Two segments with the same history are filled in both ways and compared byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <typeinfo>

#include "internal/segments.h"
#include "internal/shared_bulk.h"
#include "shm_objects.h"

namespace
{
namespace bip = boost::interprocess;
using Bytes = std::vector<unsigned char>;

class Side
{
public:
    explicit Side(std::size_t size) : m_segment(qbx::AttachSegment(m_name.c_str(), size, [](QBXSegmentManager&) {}))
    {
        const QBXByteVector::allocator_type allocator(m_segment.get_segment_manager());
        m_vector = m_segment.construct<QBXByteVector>("Vec")(allocator);
    }

    QBXSharedSegment& segment() { return m_segment; }
    QBXByteVector& vector() { return *m_vector; }
    qbx::Mapping mapping() const { return qbx::MappingOf(m_segment); }

    // Other users of the segment: blocks that are allocated and freed.
    void Allocate(std::size_t size)
    {
        void* const block = m_segment.allocate(size, std::nothrow);
        if (block != nullptr) m_blocks.push_back(block);
    }
    void Free(std::size_t which)
    {
        if (m_blocks.empty()) return;
        const auto victim = m_blocks.begin() + static_cast<std::ptrdiff_t>(which % m_blocks.size());
        m_segment.deallocate(*victim);
        m_blocks.erase(victim);
    }

private:
    test::ObjectName m_name;
    QBXSharedSegment m_segment;
    QBXByteVector* m_vector = nullptr;
    std::vector<void*> m_blocks;
};

using Fill = std::function<void(Side&, const Bytes&)>;

void InBulk(Side& side, const Bytes& data)
{
    qbx::Replace(&side.vector(), side.mapping(), data);
}

void ByteByByte(Side& side, const Bytes& data)
{
    side.vector().clear();
    for (const unsigned char byte : data) side.vector().push_back(byte);
}

void AllAtOnce(Side& side, const Bytes& data)
{
    side.vector().assign(data.begin(), data.end());
}

// Name of the exception's type; empty if there was none.
std::string Outcome(const Fill& fill, Side& side, const Bytes& data)
{
    try
    {
        fill(side, data);
        return {};
    }
    catch (const std::exception& e)
    {
        return typeid(e).name();
    }
}

class Twins
{
public:
    explicit Twins(std::size_t size) : m_a(size), m_b(size) {}

    Side& a() { return m_a; }
    Side& b() { return m_b; }

    void Both(const std::function<void(Side&)>& action)
    {
        action(m_a);
        action(m_b);
    }

    // The complete segments: bookkeeping, vector, contents, and remains in freed memory.
    bool Identical() const
    {
        const qbx::Mapping a = m_a.mapping();
        const qbx::Mapping b = m_b.mapping();
        return std::equal(a.begin, a.end, b.begin, b.end);
    }

private:
    Side m_a;
    Side m_b;
};

void ExpectEqualSegments(Twins& twins)
{
    EXPECT_EQ(twins.b().vector().size(), twins.a().vector().size());
    EXPECT_EQ(twins.b().vector().capacity(), twins.a().vector().capacity());
    EXPECT_EQ(twins.b().segment().get_free_memory(), twins.a().segment().get_free_memory());
    EXPECT_TRUE(std::equal(twins.a().vector().begin(), twins.a().vector().end(), twins.b().vector().begin(),
                           twins.b().vector().end()));
    EXPECT_TRUE(twins.a().segment().check_sanity());
    EXPECT_TRUE(twins.Identical());
}

Bytes RandomBytes(std::mt19937& random, std::size_t count)
{
    Bytes bytes(count);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
}

// Mostly small, sometimes near the size of the segment, sometimes too large for it.
std::size_t RandomSize(std::mt19937& random, std::size_t segment)
{
    switch (random() % 4)
    {
        case 0:
            return random() % 16;
        case 1:
            return random() % (segment / 16);
        case 2:
            return random() % (segment / 2);
        default:
            return random() % (segment * 2);
    }
}

void DisturbBoth(Twins& twins, std::mt19937& random, std::size_t segment)
{
    const std::size_t size = 1 + random() % (segment / 8);
    const std::size_t which = random();
    if (random() % 2 == 0)
        twins.Both([size](Side& side) { side.Allocate(size); });
    else
        twins.Both([which](Side& side) { side.Free(which); });
}

class RandomReplace : public testing::TestWithParam<unsigned>
{
};
}  // namespace

TEST_P(RandomReplace, LeavesTheSegmentAsByteByByteAppendingDoes)
{
    constexpr std::size_t kSize = 65536;
    std::mt19937 random(GetParam());
    Twins twins(kSize);
    int failures = 0;

    for (int round = 0; round < 60 && !HasFailure(); ++round)
    {
        SCOPED_TRACE(round);
        DisturbBoth(twins, random, kSize);
        const Bytes data = RandomBytes(random, RandomSize(random, kSize));

        const std::string bulk = Outcome(InBulk, twins.a(), data);
        const std::string single = Outcome(ByteByByte, twins.b(), data);

        EXPECT_EQ(single, bulk);
        ExpectEqualSegments(twins);
        if (!single.empty()) ++failures;
    }
    EXPECT_GT(failures, 0) << "no pass filled the segment: the sizes are too small to prove anything";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomReplace, testing::Range(1u, 9u));

TEST(Replace, LeavesAFullSegmentAsByteByByteAppendingDoes)
{
    Twins twins(kBufferSegmentSize);
    const Bytes data(2 * kBufferSegmentSize, 0x5A);

    const std::string bulk = Outcome(InBulk, twins.a(), data);
    const std::string single = Outcome(ByteByByte, twins.b(), data);

    EXPECT_EQ(typeid(bip::bad_alloc).name(), bulk);
    EXPECT_EQ(single, bulk);
    EXPECT_GT(twins.a().vector().size(), 0u);
    ExpectEqualSegments(twins);
}

TEST(Replace, WorksAgainAfterTheSegmentWasFull)
{
    Twins twins(65536);
    Outcome(InBulk, twins.a(), Bytes(1 << 20, 1));
    Outcome(ByteByByte, twins.b(), Bytes(1 << 20, 1));

    EXPECT_EQ("", Outcome(InBulk, twins.a(), {1, 2, 3}));
    EXPECT_EQ("", Outcome(ByteByByte, twins.b(), {1, 2, 3}));

    EXPECT_EQ(3u, twins.a().vector().size());
    ExpectEqualSegments(twins);
}

TEST(Replace, KeepsTheCapacityIfTheDataIsEmpty)
{
    Side side(65536);
    qbx::Replace(&side.vector(), side.mapping(), Bytes(5000, 1));
    const std::size_t capacity = side.vector().capacity();

    qbx::Replace(&side.vector(), side.mapping(), {});

    EXPECT_EQ(0u, side.vector().size());
    EXPECT_EQ(capacity, side.vector().capacity());
}

TEST(Replace, DiffersFromAnAssignment)
{
    Twins twins(65536);

    AllAtOnce(twins.a(), Bytes(5000, 1));
    ByteByByte(twins.b(), Bytes(5000, 1));

    EXPECT_NE(twins.b().vector().capacity(), twins.a().vector().capacity());
    EXPECT_FALSE(twins.Identical());
}

TEST(Replace, RejectsAnUnattachedVector)
{
    EXPECT_THROW(qbx::Replace(nullptr, {}, {1}), bip::interprocess_exception);
}

TEST(Replace, RejectsAVectorWithMemoryOutsideTheMapping)
{
    Side side(65536);
    Side other(65536);
    qbx::Replace(&side.vector(), side.mapping(), Bytes(100, 7));
    const qbx::Mapping tooShort{side.mapping().begin, reinterpret_cast<const char*>(side.vector().data()) + 10};

    EXPECT_THROW(qbx::Replace(&side.vector(), other.mapping(), {1}), bip::interprocess_exception);
    EXPECT_TRUE(side.vector().empty());
    EXPECT_THROW(qbx::Replace(&side.vector(), tooShort, {1}), bip::interprocess_exception);
    EXPECT_THROW(qbx::Replace(&side.vector(), {}, {1}), bip::interprocess_exception);
}

TEST(Replace, AcceptsAVectorThatFillsTheMappingButNotOneByteMore)
{
    Side side(65536);
    qbx::Replace(&side.vector(), side.mapping(), Bytes(100, 7));
    const char* const begin = reinterpret_cast<const char*>(side.vector().data());
    const char* const end = begin + side.vector().capacity();

    qbx::Replace(&side.vector(), {begin, end}, {1, 2});

    EXPECT_EQ(2u, side.vector().size());
    EXPECT_THROW(qbx::Replace(&side.vector(), {begin + 1, end + 1}, {1}), bip::interprocess_exception);
    EXPECT_THROW(qbx::Replace(&side.vector(), {begin, end - 1}, {1}), bip::interprocess_exception);
}
