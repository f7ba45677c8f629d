// The order of names, and their sections.
#include <gmock/gmock.h>
#include <ipodnames/jump_index.h>

#include <algorithm>
#include <map>
#include <random>

namespace test
{
namespace
{
using ipodnames::JumpIndex;
using ipodnames::JumpIndexOptions;
using testing::ElementsAre;
using Names = std::vector<std::string>;

JumpIndexOptions For(const std::string& locale)
{
    JumpIndexOptions options;
    options.locale = locale;
    return options;
}

Names Sorted(const Names& names, const JumpIndexOptions& options)
{
    const JumpIndex index(names, options);
    Names sorted;
    for (const int each : index.Order()) sorted.push_back(names.at(static_cast<std::size_t>(each)));
    return sorted;
}

// The label of the section of each name.
std::map<std::string, std::string> Labels(const Names& names, const JumpIndexOptions& options)
{
    const JumpIndex index(names, options);
    std::map<std::string, std::string> labels;
    for (const auto& section : index.Sections())
        for (std::size_t at = static_cast<std::size_t>(section.position); at < names.size(); ++at)
            labels[names.at(static_cast<std::size_t>(index.Order()[at]))] = section.label;
    return labels;
}

struct Alphabet
{
    const char* locale;
    std::map<std::string, std::string> labels;
};

// Taken from the alphabets: how native readers file these names.
const Alphabet kAlphabets[] = {
    {"zh",
     {{"单晓岚", "S"},
      {"曾雨桐", "Z"},
      {"重庆", "C"},
      {"地铁", "D"},
      {"乐队", "Y"},
      {"長大", "Z"},
      {"女儿", "N"},
      {"Birches", "B"},
      {"Ähren", "A"},
      {"Кино", "K"},
      {"さくら", "S"},
      {"1989", "#"},
      {"🎵", "#"}}},
    {"en", {{"Birches", "B"}, {"Øystein", "O"}, {"Ñandú", "N"}, {"周明轩", "Z"}, {"Ωδή", "O"}, {"99 Lamps", "#"}}},
    {"fr", {{"Édith", "E"}, {"Çavalier", "C"}, {"Œuvre", "O"}}},
    {"de", {{"Ähren", "A"}, {"Öl", "O"}, {"Über", "U"}}},
    {"es", {{"Ñandú", "Ñ"}, {"Nube", "N"}, {"Ángel", "A"}, {"Chile", "C"}, {"Llama", "L"}}},
    {"sv", {{"Åsa", "Å"}, {"Ärlig", "Ä"}, {"Öl", "Ö"}, {"Asta", "A"}, {"Ulla", "U"}}},
    {"pl",
     {{"Łódź", "Ł"}, {"Lato", "L"}, {"Żabka", "Ż"}, {"Źdźbło", "Ź"}, {"Ćma", "Ć"}, {"Świat", "Ś"}, {"Ósemka", "Ó"}}},
    {"cs",
     {{"Chalupa", "CH"}, {"Hana", "H"}, {"Cena", "C"}, {"Čapek", "Č"}, {"Řeka", "Ř"}, {"Šest", "Š"}, {"Žena", "Ž"}}},
    {"ru",
     {{"Алла", "А"},
      {"Ёлка", "Е"},
      {"Жук", "Ж"},
      {"Йод", "Й"},
      {"Щука", "Щ"},
      {"Эхо", "Э"},
      {"яма", "Я"},
      {"Birches", "B"},
      {"周明轩", "Z"}}},
    {"el", {{"Άλφα", "Α"}, {"Έλλη", "Ε"}, {"ψυχή", "Ψ"}, {"Ωδή", "Ω"}, {"Birches", "B"}}},
    {"ja",
     {{"さくら", "さ"},
      {"ガム", "か"},
      {"アニメ", "あ"},
      {"パパ", "は"},
      {"わか", "わ"},
      {"東京", "#"},
      {"Birches", "B"}}},
    {"ko", {{"김", "ㄱ"}, {"까치", "ㄱ"}, {"방울", "ㅂ"}, {"아침", "ㅇ"}, {"하늘", "ㅎ"}, {"Birches", "B"}}},
    {"ar", {{"أمل", "ا"}, {"فجر", "ف"}, {"نور", "ن"}, {"Birches", "B"}}},
    {"he", {{"אביב", "א"}, {"שלום", "ש"}, {"תמר", "ת"}, {"Birches", "B"}}},
    {"zh_TW", {{"三月", "3劃"}, {"周明軒", "8劃"}, {"Birches", "B"}}},
    {"zh_CN.UTF-8", {{"单晓岚", "S"}}},
    {"no-such-locale", {{"Birches", "B"}, {"单晓岚", "S"}}},
};

// Names of every script in random order; some are repeated.
Names Mixed(unsigned seed)
{
    std::mt19937 engine(seed);
    Names names;
    for (const Alphabet& alphabet : kAlphabets)
        for (const auto& [name, label] : alphabet.labels)
            for (auto times = engine() % 3; times > 0; --times) names.push_back(name);
    std::shuffle(names.begin(), names.end(), engine);
    return names;
}
}  // namespace

TEST(Sections, AreLettersOfTheAlphabetOfTheLocale)
{
    for (const Alphabet& alphabet : kAlphabets)
    {
        Names names;
        for (const auto& [name, label] : alphabet.labels) names.push_back(name);
        EXPECT_EQ(Labels(names, For(alphabet.locale)), alphabet.labels) << alphabet.locale;
    }
}

TEST(Sections, FollowTheOrderOfTheLetters)
{
    std::vector<std::string> labels;
    const JumpIndex index({"Ölund", "!!!", "周明轩", "Åsa", "Zoe", "1989", "Ärlig", "Anna"}, For("sv"));
    for (const auto& section : index.Sections()) labels.push_back(section.label + std::to_string(section.position));

    EXPECT_THAT(labels, ElementsAre("A0", "Z1", "Å3", "Ä4", "Ö5", "#6"));
}

TEST(Sections, AreRunsOfTheOrder)
{
    for (const Alphabet& alphabet : kAlphabets)
        for (unsigned seed = 0; seed < 5; ++seed)
        {
            const Names names = Mixed(seed);
            const JumpIndex index(names, For(alphabet.locale));
            ASSERT_THAT(Sorted(names, For(alphabet.locale)), testing::UnorderedElementsAreArray(names));
            std::map<std::string, int> seen;
            int end = -1;
            for (const auto& section : index.Sections())
            {
                EXPECT_EQ(++seen[section.label], 1) << section.label << " occurs twice for " << alphabet.locale;
                EXPECT_GT(section.position, end);
                end = section.position;
            }
            EXPECT_EQ(index.Sections().front().position, 0);
            EXPECT_LT(end, static_cast<int>(names.size()));
        }
}

// Otherwise, order and sections would have different keys.
TEST(Sections, AndOrderDoNotDependOnOtherNames)
{
    for (const Alphabet& alphabet : kAlphabets)
    {
        const JumpIndexOptions options = For(alphabet.locale);
        const Names sorted = Sorted(Mixed(7), options);
        const auto labels = Labels(sorted, options);
        for (std::size_t i = 1; i < sorted.size(); ++i)
        {
            EXPECT_THAT(Sorted({sorted[i], sorted[i - 1]}, options), ElementsAre(sorted[i - 1], sorted[i]))
                << options.locale;
            EXPECT_EQ(Labels({sorted[i]}, options).at(sorted[i]), labels.at(sorted[i])) << options.locale;
        }
    }
}

// A surname is read differently from the same character elsewhere; ü follows u.
TEST(Order, OfChineseNamesFollowsTheReadingThatDeterminesTheirSection)
{
    const Names names = {"单晓岚", "上官", "Sam", "三月", "《沙滩》", "乱", "路", "绿", "曾雨桐", "赵雷", "Zoe", "Åsa"};
    for (const char* locale : {"zh", "en"})
        EXPECT_THAT(Sorted(names, For(locale)), ElementsAre("Åsa", "路", "绿", "乱", "Sam", "三月", "《沙滩》",
                                                            "单晓岚", "上官", "Zoe", "曾雨桐", "赵雷"))
            << locale;
}

TEST(Order, IgnoresLeadingPunctuation)
{
    EXPECT_THAT(Sorted({"Zoe", "\"Heroes\"", "...Baby", "¿Dónde?", "A"}, {}),
                ElementsAre("A", "...Baby", "¿Dónde?", "\"Heroes\"", "Zoe"));
}

TEST(Order, IgnoresArticlesOnlyOnRequest)
{
    const Names names = {"The Birches", "the Wren", "Theo", "A Cove", "Abbey", "The", "Die Ähren"};
    JumpIndexOptions options;
    EXPECT_THAT(Sorted(names, options),
                ElementsAre("A Cove", "Abbey", "Die Ähren", "The", "The Birches", "the Wren", "Theo"));

    options.articles = {"the", "A", "die"};

    EXPECT_THAT(Sorted(names, options),
                ElementsAre("Abbey", "Die Ähren", "The Birches", "A Cove", "The", "Theo", "the Wren"));
    EXPECT_EQ(Labels(names, options).at("The Birches"), "B");
    EXPECT_THAT(JumpIndex(names, options).Search("the b"), ElementsAre(0));
}
}  // namespace test
