#include <gmock/gmock.h>
#include <ipodnames/jump_index.h>

namespace test
{
namespace
{
using ipodnames::JumpIndex;
using ipodnames::JumpIndexOptions;
using testing::ElementsAre;
using testing::IsEmpty;

class JumpIndexTest : public testing::Test
{
protected:
    JumpIndex Index(std::vector<std::string> given)
    {
        names = std::move(given);
        return JumpIndex(names);
    }

    std::vector<std::string> Found(const JumpIndex& index, const std::string& query) const
    {
        std::vector<std::string> found;
        for (const int each : index.Search(query)) found.push_back(names.at(static_cast<std::size_t>(each)));
        return found;
    }

    std::vector<std::string> names;
};

TEST_F(JumpIndexTest, FindsAChineseNameByInitialsPinyinAndAnyMixture)
{
    const JumpIndex index = Index({"林君杰", "周杰岚", "周桦"});

    for (const char* query : {"zjl", "zhoujielan", "zhoujl", "zhjl", "ZJL", "zhou jie lan", "z j l", "zjlan", "周杰岚"})
        EXPECT_THAT(Found(index, query), ElementsAre("周杰岚")) << query;
}

TEST_F(JumpIndexTest, MatchesFromALaterSyllable)
{
    const JumpIndex index = Index({"周杰岚", "杰克"});

    EXPECT_THAT(Found(index, "j"), ElementsAre("杰克", "周杰岚"));
    EXPECT_THAT(Found(index, "jl"), ElementsAre("周杰岚"));
    EXPECT_THAT(Found(index, "杰"), ElementsAre("杰克", "周杰岚"));
}

TEST_F(JumpIndexTest, TheUmlautOfASyllableIsTypedAsVOrU)
{
    const JumpIndex index = Index({"绿色", "女儿", "掠夺", "频率", "綠光", "路", "怒", "Love", "Lü"});

    EXPECT_THAT(Found(index, "lv"), testing::UnorderedElementsAre("绿色", "掠夺", "频率", "綠光"));
    EXPECT_THAT(Found(index, "lvse"), ElementsAre("绿色"));
    EXPECT_THAT(Found(index, "luse"), ElementsAre("绿色"));
    EXPECT_THAT(Found(index, "nv"), ElementsAre("女儿"));
    EXPECT_THAT(Found(index, "nu"), testing::UnorderedElementsAre("女儿", "怒"));
    EXPECT_THAT(Found(index, "lve"), ElementsAre("掠夺"));
    EXPECT_THAT(Found(index, "plv"), ElementsAre("频率"));
    EXPECT_THAT(Found(index, "love"), ElementsAre("Love"));
    for (const char* query : {"v", "loue", "lw"}) EXPECT_THAT(Found(index, query), IsEmpty()) << query;
}

TEST_F(JumpIndexTest, FindsMixedScriptsByEither)
{
    const JumpIndex index = Index({"Jo Chan 周杰岚", "Jason"});

    EXPECT_THAT(Found(index, "jo"), ElementsAre("Jo Chan 周杰岚"));
    EXPECT_THAT(Found(index, "jc"), ElementsAre("Jo Chan 周杰岚"));
    EXPECT_THAT(Found(index, "chanzjl"), ElementsAre("Jo Chan 周杰岚"));
}

TEST_F(JumpIndexTest, DoesNotFindMissingNames)
{
    const JumpIndex index = Index({"周杰岚", "Hey June"});

    for (const char* query : {"zl", "zjlx", "houjielan", "ey", "", " ", "!?", "王"})
        EXPECT_THAT(Found(index, query), IsEmpty()) << query;
    EXPECT_THAT(Found(index, std::string(100000, 'z')), IsEmpty());
}

TEST_F(JumpIndexTest, IgnoresAccentsAndCase)
{
    const JumpIndex index = Index({"Björg", "MÖWEN CRÈME", "Don’t Stay", "ÉTÉ"});

    EXPECT_THAT(Found(index, "bjorg"), ElementsAre("Björg"));
    EXPECT_THAT(Found(index, "mc"), ElementsAre("MÖWEN CRÈME"));
    EXPECT_THAT(Found(index, "dont"), ElementsAre("Don’t Stay"));
    EXPECT_THAT(Found(index, "été"), ElementsAre("ÉTÉ"));
}

TEST_F(JumpIndexTest, SortsByLetterAcrossScripts)
{
    const JumpIndex index = Index({"!!!", "Zebra", "周杰岚", "爱", "Abbey", "1989", "北京"});

    std::vector<std::string> sorted;
    for (const int each : index.Order()) sorted.push_back(names.at(static_cast<std::size_t>(each)));

    EXPECT_THAT(sorted, testing::UnorderedElementsAreArray(names));
    std::vector<std::string> sections;
    for (const auto& section : index.Sections())
        sections.push_back(section.label + " " + sorted.at(static_cast<std::size_t>(section.position)));
    EXPECT_THAT(sections, ElementsAre(testing::StartsWith("A "), "B 北京", testing::StartsWith("Z "), "# !!!"));
}

TEST_F(JumpIndexTest, AnyBytesAreSafe)
{
    const JumpIndex index = Index({"", "\xFF\xFE", std::string("a\0b", 3), std::string(255, '\x80'), "\xE5\x91"});

    EXPECT_EQ(index.Size(), 5U);
    EXPECT_THAT(index.Search("\xFF"), testing::SizeIs(testing::Le(5U)));
}

TEST_F(JumpIndexTest, ReturnsAtMostTheRequestedNumber)
{
    const JumpIndex index = Index(std::vector<std::string>(50, "a"));

    EXPECT_EQ(index.Search("a", 7).size(), 7U);
    EXPECT_EQ(index.Search("a", 0).size(), 0U);
}

TEST_F(JumpIndexTest, UsesAGivenReading)
{
    JumpIndexOptions options;
    options.readings = {"Dan Xiao", "", "zhoujielan", "lu guang"};
    names = {"单晓", "单依纯", "周杰岚", "绿光", "曾轶可"};
    const JumpIndex index(names, options);

    EXPECT_EQ(index.Reading(0), "dan xiao");
    EXPECT_EQ(index.Reading(1), "shan yi chun");
    EXPECT_EQ(index.Sections().front().label, "D");
    EXPECT_THAT(Found(index, "dx"), ElementsAre("单晓"));
    EXPECT_THAT(Found(index, "sx"), IsEmpty());
    EXPECT_THAT(Found(index, "zyk"), ElementsAre("曾轶可"));
}

TEST_F(JumpIndexTest, AcceptsAllSpellingsDespiteAGivenReadingWithoutBlanksOrUmlauts)
{
    JumpIndexOptions options;
    options.readings = {"zhoujielan", "lu guang"};
    names = {"周杰岚", "绿光"};
    const JumpIndex index(names, options);

    EXPECT_THAT(Found(index, "zjl"), ElementsAre("周杰岚"));
    EXPECT_THAT(Found(index, "lvg"), ElementsAre("绿光"));
}

TEST_F(JumpIndexTest, ReadsSurnamesDependingOnTheSubject)
{
    JumpIndexOptions options;
    options.subject = ipodnames::Subject::Title;

    EXPECT_EQ(JumpIndex({"单晓"}, options).Reading(0), "dan xiao");
    EXPECT_EQ(JumpIndex({"单晓"}).Reading(0), "shan xiao");
}

TEST_F(JumpIndexTest, ReadingThrowsForAnInvalidIndex)
{
    const JumpIndex index = Index({"a"});

    EXPECT_THROW((void)index.Reading(1), std::out_of_range);
    EXPECT_THROW((void)index.Reading(-1), std::out_of_range);
}
}  // namespace
}  // namespace test
