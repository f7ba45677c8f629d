#include <gtest/gtest.h>

#include "browse/model.h"

using ctl::browse::Jumped;
using ctl::browse::LevelNames;
using ctl::browse::ListCursor;
using ctl::browse::Moved;

namespace
{
ipodkit::PagePtr PageFrom(int first, std::vector<std::string> names)
{
    return std::make_shared<const ipodkit::Page>(ipodkit::Page{first, std::move(names)});
}

ipodkit::PagePtr WholePage(int first)
{
    return PageFrom(first, std::vector<std::string>(LevelNames::kPageSize, "x"));
}

void ExpectCursor(const ListCursor& cursor, int at, int top)
{
    EXPECT_EQ(cursor.at, at);
    EXPECT_EQ(cursor.top, top);
}
}  // namespace

TEST(ListCursor, ScrollsJustEnough)
{
    ExpectCursor(Moved({0, 0}, 9, 100, 10), 9, 0);
    ExpectCursor(Moved({9, 0}, 10, 100, 10), 10, 1);
    ExpectCursor(Moved({10, 5}, 4, 100, 10), 4, 4);
}

TEST(ListCursor, StaysWithinTheList)
{
    ExpectCursor(Moved({0, 0}, -5, 100, 10), 0, 0);
    ExpectCursor(Moved({0, 0}, 1000, 100, 10), 99, 90);
    ExpectCursor(Moved({3, 3}, 3, 0, 10), 0, 0);
}

TEST(ListCursor, FillsTheScreenWhenTheListShrinksOrTheScreenGrows)
{
    ExpectCursor(Moved({99, 90}, 99, 20, 10), 19, 10);
    ExpectCursor(Moved({99, 98}, 99, 100, 40), 99, 60);
}

TEST(ListCursor, SurvivesAScreenWithoutRows)
{
    ExpectCursor(Moved({4, 4}, 5, 10, 0), 5, 5);
}

TEST(ListCursor, CentersARowThatWasNotVisible)
{
    ExpectCursor(Jumped({0, 0}, 50, 100, 10), 50, 45);
    ExpectCursor(Jumped({0, 0}, 5, 100, 10), 5, 0);
    ExpectCursor(Jumped({0, 0}, 99, 100, 10), 99, 90);
}

TEST(LevelNames, AreUnknownAtFirst)
{
    LevelNames names;
    names.Reset(3);
    EXPECT_EQ(names.Count(), 3);
    EXPECT_EQ(names.At(0), nullptr);
    EXPECT_EQ(names.At(-1), nullptr);
    EXPECT_EQ(names.At(3), nullptr);
    EXPECT_FALSE(names.Complete());
}

TEST(LevelNames, LoadsVisibleNamesFirst)
{
    LevelNames names;
    names.Reset(1000);
    EXPECT_EQ(names.NextMissing(505, 10), 505);
    names.Put(WholePage(500));
    EXPECT_EQ(names.NextMissing(505, 10), 0);
    EXPECT_EQ(names.NextMissing(745, 10), 750);
    names.Put(WholePage(0));
    EXPECT_EQ(names.NextMissing(0, 10), 250);
    names.Put(WholePage(250));
    names.Put(WholePage(750));
    EXPECT_EQ(names.NextMissing(0, 10), -1);
    EXPECT_TRUE(names.Complete());
}

TEST(LevelNames, SharesTheNamesOfAPage)
{
    LevelNames names;
    names.Reset(2);
    const ipodkit::PagePtr page = PageFrom(0, {"a", "b"});
    names.Put(page);
    EXPECT_EQ(names.At(1), &page->At(1));
}

TEST(LevelNames, IgnoresEntriesOutsideTheLevel)
{
    LevelNames names;
    names.Reset(2);
    EXPECT_TRUE(names.Put(PageFrom(0, {"a", "b", "c"})));
    EXPECT_EQ(names.At(2), nullptr);
    EXPECT_EQ(names.Loaded(), 2);
    EXPECT_FALSE(names.Put(PageFrom(250, {"d"})));
    EXPECT_TRUE(names.Complete());
}

TEST(LevelNames, MissesTheEndOfAPageThatIsTooShort)
{
    LevelNames names;
    names.Reset(300);
    names.Put(WholePage(0));
    names.Put(PageFrom(250, {"a", "b"}));
    EXPECT_FALSE(names.Complete());
    EXPECT_EQ(names.NextMissing(0, 10), 252);
    EXPECT_EQ(names.NextMissing(250, 10), 252);
}

TEST(LevelNames, ShowStaleNamesUntilTheyAreLoaded)
{
    LevelNames names;
    names.Reset(2);
    names.Put(PageFrom(0, {"a", "b"}));
    names.MarkStale();
    EXPECT_EQ(*names.At(1), "b");
    EXPECT_EQ(names.Loaded(), 0);
    EXPECT_EQ(names.NextMissing(0, 2), 0);
    EXPECT_FALSE(names.Put(PageFrom(0, {"a", "b"})));
    EXPECT_TRUE(names.Put(PageFrom(0, {"a", "B"})));
    EXPECT_TRUE(names.Complete());
}

TEST(LevelNames, FindANameAtTheLikelyIndexFirst)
{
    LevelNames names;
    names.Reset(3);
    names.Put(PageFrom(0, {"same", "same", "other"}));
    EXPECT_EQ(names.Find("same", 1), 1);
    EXPECT_EQ(names.Find("other", 0), 2);
    EXPECT_EQ(names.Find("gone", 0), -1);
}
