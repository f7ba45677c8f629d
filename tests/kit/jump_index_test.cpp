#include <gmock/gmock.h>
#include <ipodkit/jump_index.h>

#include <fstream>

namespace test
{
namespace
{
using ipodkit::JumpIndex;
using testing::ElementsAre;
using testing::IsEmpty;

class JumpIndexTest : public testing::Test
{
protected:
    JumpIndex Index(std::vector<std::string> given)
    {
        names = std::move(given);
        return JumpIndex::Build(names).value();
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
    const JumpIndex index = Index({"林俊杰", "周杰伦", "周华健"});

    for (const char* query : {"zjl", "zhoujielun", "zhoujl", "zhjl", "ZJL", "zhou jie lun", "z j l", "zjlun", "周杰伦"})
        EXPECT_THAT(Found(index, query), ElementsAre("周杰伦")) << query;
}

TEST_F(JumpIndexTest, FindsFromALaterSyllableToo)
{
    const JumpIndex index = Index({"周杰伦", "杰克"});

    EXPECT_THAT(Found(index, "j"), ElementsAre("杰克", "周杰伦"));
    EXPECT_THAT(Found(index, "jl"), ElementsAre("周杰伦"));
    EXPECT_THAT(Found(index, "杰"), ElementsAre("杰克", "周杰伦"));
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
    const JumpIndex index = Index({"Jay Chou 周杰伦", "Jason"});

    EXPECT_THAT(Found(index, "jay"), ElementsAre("Jay Chou 周杰伦"));
    EXPECT_THAT(Found(index, "jc"), ElementsAre("Jay Chou 周杰伦"));
    EXPECT_THAT(Found(index, "chouzjl"), ElementsAre("Jay Chou 周杰伦"));
}

TEST_F(JumpIndexTest, FindsNothingThatIsNotThere)
{
    const JumpIndex index = Index({"周杰伦", "Hey Jude"});

    for (const char* query : {"zl", "zjlx", "houjielun", "ey", "", " ", "!?", "王"})
        EXPECT_THAT(Found(index, query), IsEmpty()) << query;
    EXPECT_THAT(Found(index, std::string(100000, 'z')), IsEmpty());
}

TEST_F(JumpIndexTest, AccentsAndCaseDoNotMatter)
{
    const JumpIndex index = Index({"Björk", "MÖTLEY CRÜE", "Don’t Stop", "ÉTÉ"});

    EXPECT_THAT(Found(index, "bjork"), ElementsAre("Björk"));
    EXPECT_THAT(Found(index, "mc"), ElementsAre("MÖTLEY CRÜE"));
    EXPECT_THAT(Found(index, "dont"), ElementsAre("Don’t Stop"));
    EXPECT_THAT(Found(index, "été"), ElementsAre("ÉTÉ"));
}

TEST_F(JumpIndexTest, SortsByLetterAcrossScripts)
{
    const JumpIndex index = Index({"!!!", "Zebra", "周杰伦", "爱", "Abba", "1989", "北京"});

    std::vector<std::string> sorted;
    for (const int each : index.Order()) sorted.push_back(names.at(static_cast<std::size_t>(each)));

    EXPECT_THAT(sorted, testing::UnorderedElementsAreArray(names));
    std::vector<std::string> sections;
    for (const auto& section : index.Sections())
        sections.push_back(section.label + " " + sorted.at(static_cast<std::size_t>(section.position)));
    EXPECT_THAT(sections, ElementsAre(testing::StartsWith("A "), "B 北京", testing::StartsWith("Z "), "# !!!"));
}

// A surname is read otherwise than the same character elsewhere; ü follows u.
TEST_F(JumpIndexTest, SortsChineseNamesByTheReadingThatDecidesTheirSection)
{
    for (const char* locale : {"zh", "en"})
    {
        names = {"单依纯", "上官", "Sam", "三毛", "《沙滩》", "乱", "路", "绿", "曾轶可", "赵雷", "Zoe", "Åsa"};
        const JumpIndex index = JumpIndex::Build(names, {locale}).value();

        std::vector<std::string> sorted;
        for (const int each : index.Order()) sorted.push_back(names.at(static_cast<std::size_t>(each)));

        EXPECT_THAT(sorted, ElementsAre("Åsa", "路", "绿", "乱", "Sam", "三毛", "《沙滩》", "单依纯", "上官", "Zoe",
                                        "曾轶可", "赵雷"))
            << locale;
    }
}

TEST_F(JumpIndexTest, AnyBytesAreSafe)
{
    const JumpIndex index = Index({"", "\xFF\xFE", std::string("a\0b", 3), std::string(255, '\x80'), "\xE5\x91"});

    EXPECT_EQ(index.Size(), 5U);
    EXPECT_THAT(index.Search("\xFF"), testing::SizeIs(testing::Le(5U)));
}

TEST_F(JumpIndexTest, GivesNoMoreThanAskedFor)
{
    const JumpIndex index = Index(std::vector<std::string>(50, "a"));

    EXPECT_EQ(index.Search("a", 7).size(), 7U);
    EXPECT_EQ(index.Search("a", 0).size(), 0U);
}

// Lines "NAME<tab>READING".
TEST_F(JumpIndexTest, ReadsNamesAsInTheListOfKnownReadings)
{
    std::ifstream file(IPODKIT_READINGS);
    ASSERT_TRUE(file);
    std::vector<std::string> readings;
    for (std::string line; std::getline(file, line);)
    {
        const std::size_t tab = line.find('\t');
        names.push_back(line.substr(0, tab));
        readings.push_back(line.substr(tab + 1));
    }
    ASSERT_GE(names.size(), 500U);

    const JumpIndex index = JumpIndex::Build(names).value();

    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(index.Reading(static_cast<int>(i)), readings[i]) << names[i];
}
}  // namespace
}  // namespace test
