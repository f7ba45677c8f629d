// The description of the layout: it matches segments left behind by a service built with Boost 1.56, it distinguishes
// incompatible builds, and its fingerprint is the one in docs/porting.md.
#include <QBXIpodShareMemory.h>
#include <gtest/gtest.h>
#include <ipodkit/vector_names.h>

#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>

#include "ipodctl/segments/layout.h"
#include "shm_objects.h"

namespace
{
constexpr bool k32Bit = sizeof(void*) == 4;
const std::string kWordSize = k32Bit ? "armhf" : "x86_64";

layout::Facts ThisBuild()
{
    return layout::Describe<QBXSharedSegment, QBXStringPageVector, QBXByteVector>(ipodkit::kVectorNames,
                                                                                  kListSegmentSize, kBufferSegmentSize);
}

layout::Places ThisBuildsPlaces()
{
    return layout::Measure<QBXSharedSegment, QBXStringPageVector>();
}

std::string Image(const std::string& kind)
{
    const std::vector<char> bytes = test::ReadFile(IMAGE_DIR "/" + kind + "-" + kWordSize + ".img");
    return {bytes.begin(), bytes.end()};
}

// The offset of a named vector in an image, if its name follows at the same distance as in this build.
std::size_t VectorAt(const std::string& image, const std::string& name)
{
    const std::size_t found = image.find(name + '\0');
    EXPECT_NE(found, std::string::npos);
    return found - ThisBuildsPlaces().name;
}

struct Record
{
    char name[128];
};
using ShorterNames = boost::container::vector<Record, boost::interprocess::allocator<Record, QBXSegmentManager>>;

TEST(LayoutFingerprint, MatchesTheDocumentation)
{
    EXPECT_EQ(layout::Fingerprint(ThisBuild()), k32Bit ? "adacf39407d10472" : "b07f3ca4adc88db4")
        << layout::Text(ThisBuild());
}

TEST(LayoutFingerprint, FindsEveryOffset)
{
    for (const layout::Fact& fact : ThisBuild()) EXPECT_EQ(fact.value.find("nowhere"), std::string::npos) << fact.name;
}

TEST(LayoutFingerprint, ListsTheVectorsAndSegmentsOfTheContract)
{
    const std::string text = layout::Text(ThisBuild());
    EXPECT_EQ(std::size(ipodkit::kVectorNames), 10u);
    for (const ipodkit::VectorName& vector : ipodkit::kVectorNames)
    {
        EXPECT_NE(text.find(std::string(vector.name) + ": in " + vector.segment), std::string::npos) << vector.name;
        EXPECT_TRUE(vector.segment == std::string(kListSegmentName) ||
                    vector.segment == std::string(kBufferSegmentName));
    }
    EXPECT_NE(text.find("segment of the lists: " + std::to_string(kListSegmentSize)), std::string::npos);
    EXPECT_NE(text.find("segment of the buffers: " + std::to_string(kBufferSegmentSize)), std::string::npos);
}

TEST(LayoutFingerprint, FindsTheSizeOfASegmentOfTheService)
{
    const layout::Places places = ThisBuildsPlaces();
    for (const char* kind : {"list", "buffer"})
    {
        const std::string image = Image(kind);
        EXPECT_EQ(layout::WordAt(image.data() + places.manager + places.ownSize), image.size() - places.manager)
            << kind;
    }
}

TEST(LayoutFingerprint, FindsTheMembersOfAVectorOfTheService)
{
    const layout::Places places = ThisBuildsPlaces();
    const std::string image = Image("list");

    const std::size_t vector = VectorAt(image, "VecPlayingListShareMemory");
    const auto word = [&](std::size_t at) { return layout::WordAt(image.data() + vector + at); };
    const std::size_t entries = vector + places.entries + word(places.entries);

    EXPECT_EQ(word(places.size), 40u);
    EXPECT_GE(word(places.capacity), 40u);
    EXPECT_EQ(vector + places.allocator + word(places.allocator), places.manager);
    EXPECT_EQ(image.substr(entries, 512), std::string(256, '\0') + std::string(255, 'x') + '\0');
}

TEST(LayoutFingerprint, DiffersForOtherEntries)
{
    const layout::Facts other = layout::Describe<QBXSharedSegment, ShorterNames, QBXByteVector>(
        ipodkit::kVectorNames, kListSegmentSize, kBufferSegmentSize);
    EXPECT_NE(layout::Fingerprint(other), layout::Fingerprint(ThisBuild()));
}

TEST(LayoutFingerprint, DiffersForAnotherName)
{
    std::vector<ipodkit::VectorName> names(std::begin(ipodkit::kVectorNames), std::end(ipodkit::kVectorNames));
    names.back().name = "VecEapReadBufferSharedMemory";
    const layout::Facts other = layout::Describe<QBXSharedSegment, QBXStringPageVector, QBXByteVector>(
        names, kListSegmentSize, kBufferSegmentSize);
    EXPECT_NE(layout::Fingerprint(other), layout::Fingerprint(ThisBuild()));
}

TEST(LayoutFingerprint, DiffersForAnotherLock)
{
    using Local = boost::interprocess::rbtree_best_fit<boost::interprocess::null_mutex_family, QBXSegmentPointer>;
    using Segment = boost::interprocess::basic_managed_shared_memory<char, Local, boost::interprocess::iset_index>;
    using Manager = Segment::segment_manager;
    using Names =
        boost::container::vector<PlayListSongNameStr, boost::interprocess::allocator<PlayListSongNameStr, Manager>>;
    const layout::Facts other =
        layout::Describe<Segment, Names, QBXByteVector>(ipodkit::kVectorNames, kListSegmentSize, kBufferSegmentSize);
    EXPECT_NE(layout::Fingerprint(other), layout::Fingerprint(ThisBuild()));
}

TEST(LayoutFingerprint, LeavesNothingBehind)
{
    ThisBuild();
    for (const char* segment : {kListSegmentName, kBufferSegmentName})
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::path("/dev/shm") / segment)) << segment;
}
}  // namespace
