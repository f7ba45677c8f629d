// Pages of names: callers get the contents of the shared vectors.
#include "bus/bus_test.h"
#include "support/shared_vectors.h"

namespace test
{
namespace
{
using Names = std::vector<std::string>;

struct ListReader
{
    const char* name;
    const char* vector;
    const char* reply;
    int (*read)(IQBXIpodPlayer&, Names&);
};

int ignoredFolder;
int ignoredRoot;

const ListReader kReaders[] = {
    {"GetPlayingListItems", "VecPlayingListShareMemory", "(true,)",
     [](IQBXIpodPlayer& player, Names& list) { return player.GetPlayingListItems(0, 1, list); }},
    {"GetCurDbListItems", "VecDBListShareMemory", "(true, true, true)",
     [](IQBXIpodPlayer& player, Names& list)
     { return player.GetCurDBListItems(0, 1, list, ignoredFolder, ignoredRoot); }},
    {"GetCurDbListItemsPinyin", "VecDBListPinyinShareMemory", "(true, true, true)",
     [](IQBXIpodPlayer& player, Names& list)
     { return player.GetCurDBListItemsPinyin(0, 1, list, ignoredFolder, ignoredRoot); }},
    {"GetUpdateListItems", "VecUpdateListShareMemory", "(true,)",
     [](IQBXIpodPlayer& player, Names& list) { return player.GetUpdateListItems(0, 1, list); }},
    {"GetUpdateListItemsPinyin", "VecUpdateListPinyinShareMemory", "(true,)",
     [](IQBXIpodPlayer& player, Names& list) { return player.GetUpdateListItemsPinyin(0, 1, list); }},
    {"GetDeviceList", "VecDeviceListShareMemory", "(true,)",
     [](IQBXIpodPlayer& player, Names& list) { return player.GetDeviceList(list); }},
};

std::ostream& operator<<(std::ostream& out, const ListReader& reader)
{
    return out << reader.name;
}

std::string NameOfReader(const testing::TestParamInfo<ListReader>& row)
{
    return row.param.name;
}

class ListTest : public ServiceTest, public testing::WithParamInterface<ListReader>
{
protected:
    IQBXIpodPlayer& Answering()
    {
        service.Answer(GetParam().name, GetParam().reply);
        return Connected();
    }

    SharedVectors vectors;
    Names list = {"what", "was", "there", "before"};
};

class DatabaseListTest : public ServiceTest
{
};

TEST_P(ListTest, ReturnsTheWholeVectorInOrderForAnyRange)
{
    IQBXIpodPlayer& player = Answering();
    vectors.SetList(GetParam().vector, {"Zebra", "Apple", "\xe4\xb8\xad\xe6\x96\x87"});

    EXPECT_EQ(GetParam().read(player, list), 1);

    EXPECT_THAT(list, ElementsAre("Zebra", "Apple", "\xe4\xb8\xad\xe6\x96\x87"));
}

TEST_P(ListTest, IsEmptyIfTheVectorIs)
{
    IQBXIpodPlayer& player = Answering();
    vectors.SetList(GetParam().vector, {});

    EXPECT_EQ(GetParam().read(player, list), 1);

    EXPECT_THAT(list, IsEmpty());
    EXPECT_EQ(list.capacity(), 0U);
}

TEST_P(ListTest, IsEmptyWhenTheVectorReachesBeyondItsSegment)
{
    IQBXIpodPlayer& player = Answering();
    vectors.SetList(GetParam().vector, {"name"});
    ForgeSize(&vectors.List(GetParam().vector), kListSegmentSize / sizeof(PlayListSongNameStr));

    EXPECT_EQ(GetParam().read(player, list), 1);

    EXPECT_THAT(list, IsEmpty());
}

TEST_P(ListTest, EndsEachNameAtItsFirstNulOrAfter256Bytes)
{
    IQBXIpodPlayer& player = Answering();
    const std::string longest(255, 'x');
    PlayListSongNameStr unterminated{};
    std::fill(std::begin(unterminated.name), std::end(unterminated.name), 'y');
    PlayListSongNameStr hidden = Entry("before");
    hidden.name[10] = 'z';
    vectors.SetEntries(GetParam().vector, {Entry(""), unterminated, Entry(longest), Entry(""), hidden, unterminated});

    GetParam().read(player, list);

    EXPECT_THAT(list, ElementsAre("", std::string(256, 'y'), longest, "", "before", std::string(256, 'y')));
}

TEST_P(ListTest, IsThePreviousPageAfterAFailedCall)
{
    IQBXIpodPlayer& player = Answering();
    vectors.SetList(GetParam().vector, {"previous", "page"});
    GetParam().read(player, list);
    service.Fail(GetParam().name, "no page");
    list = {"other"};

    EXPECT_EQ(GetParam().read(player, list), 0);

    EXPECT_THAT(list, ElementsAre("previous", "page"));
}

TEST_P(ListTest, LeavesOtherVectorsUnchanged)
{
    IQBXIpodPlayer& player = Answering();
    for (const ListReader& reader : kReaders) vectors.SetList(reader.vector, {reader.name});

    GetParam().read(player, list);

    EXPECT_THAT(list, ElementsAre(GetParam().name));
    for (const ListReader& reader : kReaders) EXPECT_EQ(vectors.List(reader.vector).size(), 1U);
}

TEST_P(ListTest, ReturnsAPageOfTenThousandNames)
{
    IQBXIpodPlayer& player = Answering();
    const Names names(10000, "name");
    vectors.SetList(GetParam().vector, names);

    GetParam().read(player, list);

    EXPECT_EQ(list, names);
}

TEST_P(ListTest, ReturnsZeroAndThePageIfTheServiceDoes)
{
    std::string refused = GetParam().reply;
    refused.replace(refused.rfind("true"), 4, "false");
    service.Answer(GetParam().name, refused);
    IQBXIpodPlayer& player = Connected();
    vectors.SetList(GetParam().vector, {"page"});

    EXPECT_EQ(GetParam().read(player, list), 0);

    EXPECT_THAT(list, ElementsAre("page"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, ListTest, testing::ValuesIn(kReaders), NameOfReader);

TEST_F(DatabaseListTest, ReturnsTheTwoFlagsOfTheLevel)
{
    IQBXIpodPlayer& player = Connected();
    Names list;
    int folder = 5;
    int root = 6;

    service.Answer("GetCurDbListItems", "(true, false, true)");
    player.GetCurDBListItems(0, 9, list, folder, root);
    EXPECT_EQ(folder, 1);
    EXPECT_EQ(root, 0);

    service.Answer("GetCurDbListItemsPinyin", "(false, true, true)");
    player.GetCurDBListItemsPinyin(0, 9, list, folder, root);
    EXPECT_EQ(folder, 0);
    EXPECT_EQ(root, 1);
}

TEST_F(DatabaseListTest, ReadsTheVectorThatTheApplicationSets)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("GetDeviceList", "(true,)");
    QBXSharedSegment elsewhere(boost::interprocess::create_only, "SegmentOfTheApplication", 65536);
    const QBXStringPageVector::allocator_type allocator(elsewhere.get_segment_manager());
    g_VecDeviceListShareMemory = elsewhere.construct<QBXStringPageVector>("page")(allocator);
    g_VecDeviceListShareMemory->push_back(Entry("a device"));
    Names list;

    player.GetDeviceList(list);

    EXPECT_THAT(list, ElementsAre("a device"));
    boost::interprocess::shared_memory_object::remove("SegmentOfTheApplication");
}

TEST_F(DatabaseListTest, CountsTheRootForEveryNumberButZero)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("GetCurDbListItemsAmount", "(9,)");

    for (const int fromTop : {0, 1, -1}) player.GetCurDBListItemsAmount(fromTop);

    EXPECT_THAT(service.Calls(), ElementsAre("GetCurDbListItemsAmount(false,)", "GetCurDbListItemsAmount(true,)",
                                             "GetCurDbListItemsAmount(true,)"));
}

TEST_F(DatabaseListTest, PassesIndicesUnchanged)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("GetPlayingListItems", "(true,)");
    Names list;

    player.GetPlayingListItems(10, 5, list);
    player.GetPlayingListItems(-2147483647 - 1, 2147483647, list);

    EXPECT_THAT(service.Calls(),
                ElementsAre("GetPlayingListItems(10, 5)", "GetPlayingListItems(-2147483648, 2147483647)"));
}
}  // namespace
}  // namespace test
