#include <gmock/gmock.h>
#include <ipodnames/reading.h>

#include <fstream>
#include <thread>
#include <vector>

namespace test
{
namespace
{
using ipodnames::Reading;
using ipodnames::Subject;

struct Row
{
    std::string name;
    std::string reading;
};

// The file describes its format.
std::vector<Row> KnownReadings()
{
    std::ifstream file(IPODNAMES_READINGS);
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);)
    {
        const std::size_t tab = line.find('\t');
        if (tab != std::string::npos) rows.push_back({line.substr(0, tab), line.substr(tab + 1)});
    }
    return rows;
}

void ExpectReadings(const std::vector<Row>& rows, Subject subject)
{
    for (const Row& row : rows) EXPECT_EQ(Reading(row.name, subject), row.reading) << row.name;
}
}  // namespace

TEST(Readings, MatchTheListOfKnownReadings)
{
    const std::vector<Row> rows = KnownReadings();
    ASSERT_GE(rows.size(), 721U);
    ExpectReadings(rows, Subject::Unknown);
}

// Characters whose reading in a surname differs from that in a word come first.
TEST(Readings, OfPersonsUseTheSurnameReading)
{
    ExpectReadings({{"曾雨桐", "zeng yu tong"},
                    {"单晓岚", "shan xiao lan"},
                    {"单晓", "shan xiao"},
                    {"解思远", "xie si yuan"},
                    {"解语花", "xie yu hua"},
                    {"查云舟", "zha yun zhou"},
                    {"仇英", "qiu ying"},
                    {"区家麟", "ou jia lin"},
                    {"任平", "ren ping"},
                    {"乐嘉", "yue jia"},
                    {"尉迟恭", "yu chi gong"},
                    {"万俟", "mo qi"},
                    {"折可适", "she ke shi"},
                    {"员半千", "yun ban qian"},
                    {"葛兰", "ge lan"},
                    {"朴志勋", "piao zhi xun"},
                    {"朴树", "pu shu"},
                    {"覃塘", "qin tang"},
                    {"周杰伦", "zhou jie lun"},
                    {"周明轩", "zhou ming xuan"},
                    {"欧阳修", "ou yang xiu"},
                    {"司马光", "si ma guang"},
                    {"令狐冲", "ling hu chong"},
                    {"吕思清", "lu si qing"},
                    {"牟其中", "mu qi zhong"},
                    {"華彥鈞", "hua yan jun"},
                    {"單依純", "shan yi chun"},
                    {"長孫無忌", "zhang sun wu ji"},
                    {"澹台灭明", "tan tai mie ming"},
                    {"缪骞人", "miao qian ren"}},
                   Subject::Person);
}

TEST(Readings, OfPersonsMayHaveSeveralScriptsAndNames)
{
    ExpectReadings({{"Brook 与 曾雨桐", "brook yu zeng yu tong"},
                    {"曾雨桐/单晓", "zeng yu tong shan xiao"},
                    {"Élodie Rouvière", "elodie rouviere"}},
                   Subject::Person);
}

TEST(Readings, OfTitlesHaveNoSurnames)
{
    ExpectReadings({{"单身的夜", "dan shen de ye"},
                    {"单晓", "dan xiao"},
                    {"解放", "jie fang"},
                    {"解语花", "jie yu hua"},
                    {"繁星", "fan xing"},
                    {"朴树", "pu shu"},
                    {"音乐", "yin yue"},
                    {"长夜里的音乐", "chang ye li de yin yue"},
                    {"最后一班地铁", "zui hou yi ban di tie"},
                    {"银行旁的咖啡店", "yin hang pang de ka fei dian"},
                    {"长城", "chang cheng"},
                    {"乾坤", "qian kun"},
                    {"乾杯", "gan bei"},
                    {"茉莉花 (Live)", "mo li hua live"},
                    {"Low Water", "low water"}},
                   Subject::Title);
}

TEST(Readings, OfCommonWordsIgnoreSurnames)
{
    ExpectReadings(
        {{"单人", "dan ren"}, {"曾经", "ceng jing"}, {"区域", "qu yu"}, {"查看", "cha kan"}, {"仇人", "chou ren"}},
        Subject::Unknown);
}

// Finals and initials, by the rules of the romanization: liaison, nasalization, liquids, aspiration, palatalization.
TEST(Readings, OfKoreanFollowThePronunciation)
{
    ExpectReadings(
        {{"음악", "eumak"},    {"앉아", "anja"},    {"읽어", "ilgeo"},     {"없어", "eopseo"}, {"국물", "gungmul"},
         {"입니다", "imnida"}, {"꽃말", "kkonmal"}, {"왕릉", "wangneung"}, {"심리", "simni"},  {"협력", "hyeomnyeok"},
         {"칼날", "kallal"},   {"좋다", "jota"},    {"많고", "manko"},     {"싫지", "silchi"}, {"굳이", "guji"},
         {"핥이", "halchi"},   {"흙", "heuk"},      {"값", "gap"},         {"닭", "dak"},      {"강원", "gangwon"}},
        Subject::Unknown);
}

TEST(Readings, AreEmptyWithoutReadableText)
{
    ExpectReadings({{"", ""}, {"🎵", ""}, {" …!", ""}, {"\xFF\xFE", ""}, {"'", ""}}, Subject::Unknown);
}

TEST(Readings, AreTheSameOnEveryThread)
{
    const std::vector<Row> rows = KnownReadings();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([&rows] { ExpectReadings(rows, Subject::Unknown); });
    for (std::thread& thread : threads) thread.join();
}
}  // namespace test
