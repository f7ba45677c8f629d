#include "music/pinyin.h"

#include <gtest/gtest.h>

using ipodsim::Pinyin;
using ipodsim::Reading;

namespace
{
struct Example
{
    const char* text;
    const char* pinyin;
};

class ReadingOfPersons : public testing::TestWithParam<Example>
{
};
class ReadingOfWords : public testing::TestWithParam<Example>
{
};
}  // namespace

TEST_P(ReadingOfPersons, IsThatOfTheName)
{
    EXPECT_EQ(Pinyin(GetParam().text, Reading::Person), GetParam().pinyin);
}

// Characters that read otherwise in a surname than in a word come first.
INSTANTIATE_TEST_SUITE_P(Names, ReadingOfPersons,
                         testing::Values(Example{"曾雨桐", "zeng yu tong"}, Example{"单晓岚", "shan xiao lan"},
                                         Example{"解思远", "xie si yuan"}, Example{"查云舟", "zha yun zhou"},
                                         Example{"仇英", "qiu ying"}, Example{"区家麟", "ou jia lin"},
                                         Example{"任平", "ren ping"}, Example{"乐嘉", "yue jia"},
                                         Example{"尉迟恭", "yu chi gong"}, Example{"万俟", "mo qi"},
                                         Example{"折可适", "she ke shi"}, Example{"员半千", "yun ban qian"},
                                         Example{"葛兰", "ge lan"}, Example{"朴志勋", "piao zhi xun"},
                                         Example{"覃塘", "qin tang"}, Example{"周杰伦", "zhou jie lun"},
                                         Example{"周明轩", "zhou ming xuan"}, Example{"欧阳修", "ou yang xiu"},
                                         Example{"司马光", "si ma guang"}, Example{"长孙无忌", "zhang sun wu ji"},
                                         Example{"令狐冲", "ling hu chong"}, Example{"吕思清", "lu si qing"},
                                         Example{"牟其中", "mu qi zhong"}, Example{"華彥鈞", "hua yan jun"}));

TEST_P(ReadingOfWords, IsNotThatOfASurname)
{
    EXPECT_EQ(Pinyin(GetParam().text, Reading::Words), GetParam().pinyin);
}

INSTANTIATE_TEST_SUITE_P(Titles, ReadingOfWords,
                         testing::Values(Example{"单身的夜", "dan shen de ye"}, Example{"解放", "jie fang"},
                                         Example{"繁星", "fan xing"}, Example{"音乐", "yin yue"},
                                         Example{"长夜里的音乐", "chang ye li de yin yue"},
                                         Example{"银行旁的咖啡店", "yin hang pang de ka fei dian"},
                                         Example{"长城", "chang cheng"}, Example{"茉莉花 (Live)", "mo li hua (live)"}));

TEST(Pinyin, LeavesLatinTextButForCaseAndAccents)
{
    EXPECT_EQ(Pinyin("Low Water", Reading::Words), "low water");
    EXPECT_EQ(Pinyin("Été à vélo", Reading::Words), "ete a velo");
    EXPECT_EQ(Pinyin("Élodie Rouvière", Reading::Person), "elodie rouviere");
}

TEST(Pinyin, MixesScriptsWithSingleBlanks)
{
    EXPECT_EQ(Pinyin("Bach 与 曾雨桐", Reading::Person), "bach yu zeng yu tong");
    EXPECT_EQ(Pinyin("さくら", Reading::Words), "sakura");
}

TEST(Pinyin, OfNothingIsNothing)
{
    EXPECT_EQ(Pinyin("", Reading::Person), "");
}
