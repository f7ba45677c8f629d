// The index of 50,000 names: build time, memory, and search time.
#include <gmock/gmock.h>
#include <ipodnames/jump_index.h>
#include <malloc.h>

#include <random>

#include "kit/figures/figures.h"

namespace test
{
namespace
{
using ipodnames::JumpIndex;
using Names = std::vector<std::string>;

constexpr int kNames = 50000;

// Common characters; like the kana and letters of the other lists, two to six are drawn at random for each name.
Names Drawn(char32_t first, unsigned count, int each, const std::string& prefix)
{
    std::mt19937 engine(1);
    Names names;
    for (int i = 0; i < kNames; ++i)
    {
        std::u32string name;
        for (auto length = 2 + engine() % 5; length > 0; --length)
            name += static_cast<char32_t>(first + engine() % count);
        std::string text = i % each == 0 ? prefix + std::to_string(i) + " " : "";
        for (const char32_t letter : name)
        {
            if (letter >= 0x800) text += static_cast<char>(0xE0 | letter >> 12);
            text += static_cast<char>(letter >= 0x800 ? 0x80 | (letter >> 6 & 63) : 0xC0 | letter >> 6);
            text += static_cast<char>(0x80 | (letter & 63));
        }
        names.push_back(text);
    }
    return names;
}

Names Chinese()
{
    return Drawn(0x4E00, 8000, 3, "feat. Jay ");
}

double MillisecondsToBuild(const Names& names)
{
    const auto start = Clock::now();
    const JumpIndex index(names);
    EXPECT_EQ(index.Size(), names.size());
    return Microseconds(Clock::now() - start) / 1000;
}

TEST(IndexFigures, Chinese)
{
    Print("index_chinese", MillisecondsToBuild(Chinese()));
}

TEST(IndexFigures, Cyrillic)
{
    Print("index_cyrillic", MillisecondsToBuild(Drawn(0x430, 32, 3, "Группа ")));
}

TEST(IndexFigures, Accents)
{
    Print("index_accents", MillisecondsToBuild(Drawn(0xE0, 23, 3, "the ")));
}

TEST(IndexFigures, Kana)
{
    Print("index_kana", MillisecondsToBuild(Drawn(0x3042, 80, 3, "ラブ ")));
}

TEST(IndexFigures, Korean)
{
    Print("index_korean", MillisecondsToBuild(Drawn(0xAC00, 11000, 3, "feat. ")));
}

TEST(IndexFigures, Search)
{
    const auto before = mallinfo2().uordblks;
    const JumpIndex index(Chinese());
    Print("index_memory", static_cast<double>(mallinfo2().uordblks - before) / (1 << 20));
    Samples searches;
    for (const char* query :
         {"z", "zj", "zjl", "j", "jay", "feat", "s", "shi", "yi", "xyz", "aaaaaaaa", "zhoujielun", "周"})
        for (int i = 0; i < 10; ++i)
        {
            const auto from = Clock::now();
            (void)index.Search(query);
            searches.push_back(Microseconds(Clock::now() - from) / 1000);
        }
    Print("search_median", Quantile(searches, 0.5));
    Print("search_slowest", Quantile(searches, 1.0));
}
}  // namespace
}  // namespace test
