#include <gtest/gtest.h>

#include "browse_screen.h"

using namespace ctl::browse;

namespace
{
const std::vector<std::string> kArtists = {"Adele", "陈奕迅", "Élodie Rouvière", "林俊杰", "Zaz", "曾雨桐", "周杰伦"};

Model ModelOf(const std::vector<std::string>& names, int height = 3)
{
    Model model;
    model.SetHeight(height);
    Fill(model, names);
    return model;
}
}  // namespace

TEST(BrowseModel, MovesByRowsAndPages)
{
    Model model = ModelOf(kArtists);
    Press(model, Key::Down);
    EXPECT_EQ(model.Selected(), 1);
    Press(model, Key::PageDown);
    EXPECT_EQ(model.Selected(), 4);
    Press(model, Key::End);
    EXPECT_EQ(model.Selected(), 6);
    Press(model, Key::PageUp);
    EXPECT_EQ(model.Selected(), 3);
    Press(model, Key::Home);
    Press(model, Key::Up);
    EXPECT_EQ(model.Selected(), 0);
}

TEST(BrowseModel, OpensTheSelectedEntryAndGoesBack)
{
    Model model = ModelOf(kArtists);
    Press(model, Key::Down);
    for (const Key key : {Key::Enter, Key::Right})
    {
        const Wish wish = Press(model, key);
        EXPECT_EQ(wish.what, Wish::What::Open);
        EXPECT_EQ(wish.entry, 1);
    }
    for (const Key key : {Key::Left, Key::Backspace, Key::Escape}) EXPECT_EQ(Press(model, key).what, Wish::What::Back);
}

TEST(BrowseModel, JumpsToANameByItsInitials)
{
    Model model = ModelOf(kArtists);
    Type(model, "zjl");
    EXPECT_EQ(SelectedName(model), "周杰伦");
    EXPECT_TRUE(model.Jumping()->matches);
}

TEST(BrowseModel, JumpsToALetter)
{
    Model model = ModelOf(kArtists);
    Type(model, "l");
    EXPECT_EQ(SelectedName(model), "林俊杰");
    Press(model, Key::Escape);
    Type(model, "e");
    EXPECT_EQ(SelectedName(model), "Élodie Rouvière");
}

TEST(BrowseModel, StaysWhereItIsWhenNothingMatches)
{
    Model model = ModelOf(kArtists);
    Type(model, "zjx");
    EXPECT_FALSE(model.Jumping()->matches);
    EXPECT_EQ(SelectedName(model), "周杰伦");
}

TEST(BrowseModel, TakesALetterOfAJumpBack)
{
    Model model = ModelOf(kArtists);
    Type(model, "zjx");
    EXPECT_EQ(Press(model, Key::Backspace).what, Wish::What::Nothing);
    EXPECT_EQ(model.Jumping()->query, "zj");
    Press(model, Key::Backspace);
    Press(model, Key::Backspace);
    EXPECT_FALSE(model.Jumping());
    EXPECT_EQ(Press(model, Key::Backspace).what, Wish::What::Back);
}

TEST(BrowseModel, BeginsANewJumpAfterAWhile)
{
    Model model = ModelOf(kArtists);
    Type(model, "z");
    model.Tick(kNow + std::chrono::seconds(1));
    EXPECT_TRUE(model.Jumping());
    model.Tick(kNow + std::chrono::seconds(2));
    EXPECT_FALSE(model.Jumping());
    Type(model, "a", kNow + std::chrono::seconds(3));
    EXPECT_EQ(SelectedName(model), "Adele");
}

TEST(BrowseModel, EscapeEndsAJumpWithoutGoingBack)
{
    Model model = ModelOf(kArtists);
    Type(model, "z");
    EXPECT_EQ(Press(model, Key::Escape).what, Wish::What::Nothing);
    EXPECT_FALSE(model.Jumping());
}

TEST(BrowseModel, JumpsAsSoonAsTheNamesAreRead)
{
    Model model;
    model.SetHeight(3);
    model.SetCount(static_cast<int>(kArtists.size()));
    model.Put({0, kArtists, true, true});
    Type(model, "zjl");
    EXPECT_EQ(model.Selected(), 0);
    model.SetIndex(ipodnames::JumpIndex(kArtists));
    EXPECT_EQ(SelectedName(model), "周杰伦");
}

TEST(BrowseModel, ListsOnlyWhatIsSearchedFor)
{
    Model model = ModelOf(kArtists);
    Type(model, "/");
    EXPECT_EQ(model.Rows(), 7);
    Type(model, "z");
    EXPECT_EQ(model.Rows(), 3);
    Type(model, "jl");
    ASSERT_EQ(model.Rows(), 1);
    const Wish wish = Press(model, Key::Enter);
    EXPECT_EQ(wish.what, Wish::What::Open);
    EXPECT_EQ(wish.entry, 6);
}

TEST(BrowseModel, SearchesWhileLettersAreTakenBack)
{
    Model model = ModelOf(kArtists);
    Type(model, "/zjlx");
    EXPECT_EQ(model.Rows(), 0);
    EXPECT_EQ(model.Selected(), -1);
    Press(model, Key::Backspace);
    EXPECT_EQ(model.Rows(), 1);
    for (int i = 0; i < 3; ++i) Press(model, Key::Backspace);
    EXPECT_EQ(model.Rows(), 7);
    EXPECT_EQ(Press(model, Key::Backspace).what, Wish::What::Nothing);
    EXPECT_FALSE(model.Searching());
}

TEST(BrowseModel, TakesWholeCharactersBack)
{
    Model model = ModelOf(kArtists);
    Type(model, "/");
    model.Press({Key::Text, "周"}, kNow);
    EXPECT_EQ(model.Rows(), 1);
    Press(model, Key::Backspace);
    EXPECT_EQ(model.Searching()->query, "");
}

TEST(BrowseModel, LeavesASearchWhereItBegan)
{
    Model model = ModelOf(kArtists);
    Press(model, Key::Down);
    Type(model, "/zjl");
    EXPECT_EQ(Press(model, Key::Escape).what, Wish::What::Nothing);
    EXPECT_EQ(model.Rows(), 7);
    EXPECT_EQ(model.Selected(), 1);
}

TEST(BrowseModel, StandsAtWhatWasFoundAfterwards)
{
    Model model = ModelOf(kArtists);
    Type(model, "/zjl");
    Press(model, Key::Enter);
    Press(model, Key::Escape);
    EXPECT_EQ(SelectedName(model), "周杰伦");
}

TEST(BrowseModel, BlanksAreTextInASearchAndPauseElsewhere)
{
    Model model = ModelOf(kArtists);
    EXPECT_EQ(Type(model, " ").what, Wish::What::TogglePause);
    EXPECT_EQ(Type(model, ">").what, Wish::What::Next);
    EXPECT_EQ(Type(model, "<").what, Wish::What::Previous);
    EXPECT_EQ(Type(model, "/zhou jie").what, Wish::What::Nothing);
    EXPECT_EQ(SelectedName(model), "周杰伦");
}

TEST(BrowseModel, KeepsItsPlaceInEachLevel)
{
    Model model = ModelOf({"Artists", "Albums"});
    Press(model, Key::Down);
    model.Enter("Albums", 1);
    EXPECT_FALSE(model.AtRoot());
    EXPECT_EQ(model.Rows(), 0);
    EXPECT_EQ(Press(model, Key::Enter).entry, -1);
    Fill(model, kArtists);
    Press(model, Key::End);
    model.Leave();
    EXPECT_TRUE(model.AtRoot());
    EXPECT_EQ(SelectedName(model), "Albums");
}

TEST(BrowseModel, TakesUpTheCursorOfALevelThatItReturnsTo)
{
    Model model = ModelOf({"Artists"});
    model.Enter("Artists", 0, {5, 4});
    model.SetHeight(2);
    Fill(model, kArtists);
    EXPECT_EQ(model.Selected(), 5);
    EXPECT_EQ(model.Cursor().top, 4);
}

TEST(BrowseModel, ForgetsTheIndexOfNamesThatBecameOthers)
{
    Model model = ModelOf(kArtists);
    model.Put({0, {"Adele"}, false, true});
    EXPECT_TRUE(model.Current().index);
    model.Put({0, {"Björk"}, false, true});
    EXPECT_FALSE(model.Current().index);
}

TEST(BrowseModel, DropsWhatItKnewWhenTheSizeIsAnother)
{
    Model model = ModelOf(kArtists);
    Press(model, Key::End);
    model.SetCount(2);
    EXPECT_EQ(model.Current().names.At(0), nullptr);
    EXPECT_EQ(model.Selected(), 1);
}

TEST(BrowseModel, ShowsItsKeysUntilAnotherIsPressed)
{
    Model model = ModelOf(kArtists);
    Type(model, "?");
    Press(model, Key::Down);
    EXPECT_EQ(model.Help(), 1);
    EXPECT_EQ(Press(model, Key::Enter).what, Wish::What::Nothing);
    EXPECT_FALSE(model.Help());
}

TEST(BrowseModel, ForgetsAMessageAfterAWhileOrAKey)
{
    Model model = ModelOf(kArtists);
    model.Say("refused", kNow);
    model.Tick(kNow + std::chrono::seconds(4));
    EXPECT_EQ(model.Message(), "refused");
    model.Tick(kNow + std::chrono::seconds(5));
    EXPECT_EQ(model.Message(), "");
    model.Say("refused", kNow);
    Press(model, Key::Down);
    EXPECT_EQ(model.Message(), "");
}
