#include <gtest/gtest.h>

#include "browse_screen.h"

using namespace ctl::browse;

namespace
{
const std::vector<std::string> kArtists = {"Ada", "陈亦辰", "Élodie Rouvière", "林若溪", "Zelie", "曾雨桐", "周明轩"};

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
        const Action action = Press(model, key);
        EXPECT_EQ(action.kind, Action::Kind::Open);
        EXPECT_EQ(action.entry, 1);
    }
    for (const Key key : {Key::Left, Key::Backspace, Key::Escape})
        EXPECT_EQ(Press(model, key).kind, Action::Kind::Back);
}

TEST(BrowseModel, JumpsToANameByItsInitials)
{
    Model model = ModelOf(kArtists);
    Type(model, "zmx");
    EXPECT_EQ(SelectedName(model), "周明轩");
    EXPECT_TRUE(model.Jumping()->matches);
}

TEST(BrowseModel, JumpsToALetter)
{
    Model model = ModelOf(kArtists);
    Type(model, "l");
    EXPECT_EQ(SelectedName(model), "林若溪");
    Press(model, Key::Escape);
    Type(model, "e");
    EXPECT_EQ(SelectedName(model), "Élodie Rouvière");
}

TEST(BrowseModel, StaysWhereItIsWhenNothingMatches)
{
    Model model = ModelOf(kArtists);
    Type(model, "zmy");
    EXPECT_FALSE(model.Jumping()->matches);
    EXPECT_EQ(SelectedName(model), "周明轩");
}

TEST(BrowseModel, BackspaceDeletesTheLastLetterOfAJump)
{
    Model model = ModelOf(kArtists);
    Type(model, "zmy");
    EXPECT_EQ(Press(model, Key::Backspace).kind, Action::Kind::Nothing);
    EXPECT_EQ(model.Jumping()->query, "zm");
    Press(model, Key::Backspace);
    Press(model, Key::Backspace);
    EXPECT_FALSE(model.Jumping());
    EXPECT_EQ(Press(model, Key::Backspace).kind, Action::Kind::Back);
}

TEST(BrowseModel, StartsANewJumpAfterTwoSeconds)
{
    Model model = ModelOf(kArtists);
    Type(model, "z");
    model.Tick(kNow + std::chrono::seconds(1));
    EXPECT_TRUE(model.Jumping());
    model.Tick(kNow + std::chrono::seconds(2));
    EXPECT_FALSE(model.Jumping());
    Type(model, "a", kNow + std::chrono::seconds(3));
    EXPECT_EQ(SelectedName(model), "Ada");
}

TEST(BrowseModel, EscapeEndsAJumpWithoutGoingBack)
{
    Model model = ModelOf(kArtists);
    Type(model, "z");
    EXPECT_EQ(Press(model, Key::Escape).kind, Action::Kind::Nothing);
    EXPECT_FALSE(model.Jumping());
}

TEST(BrowseModel, JumpsAsSoonAsTheIndexIsBuilt)
{
    Model model;
    model.SetHeight(3);
    model.SetCount(static_cast<int>(kArtists.size()));
    PutPage(model, 0, kArtists, true);
    Type(model, "zmx");
    EXPECT_EQ(model.Selected(), 0);
    model.SetIndex(ipodnames::JumpIndex(kArtists));
    EXPECT_EQ(SelectedName(model), "周明轩");
}

TEST(BrowseModel, ASearchListsMatchesOnly)
{
    Model model = ModelOf(kArtists);
    Type(model, "/");
    EXPECT_EQ(model.Rows(), 7);
    Type(model, "z");
    EXPECT_EQ(model.Rows(), 3);
    Type(model, "mx");
    ASSERT_EQ(model.Rows(), 1);
    const Action action = Press(model, Key::Enter);
    EXPECT_EQ(action.kind, Action::Kind::Open);
    EXPECT_EQ(action.entry, 6);
}

TEST(BrowseModel, ASearchWidensWhenLettersAreDeleted)
{
    Model model = ModelOf(kArtists);
    Type(model, "/zmxy");
    EXPECT_EQ(model.Rows(), 0);
    EXPECT_EQ(model.Selected(), -1);
    Press(model, Key::Backspace);
    EXPECT_EQ(model.Rows(), 1);
    for (int i = 0; i < 3; ++i) Press(model, Key::Backspace);
    EXPECT_EQ(model.Rows(), 7);
    EXPECT_EQ(Press(model, Key::Backspace).kind, Action::Kind::Nothing);
    EXPECT_FALSE(model.Searching());
}

TEST(BrowseModel, BackspaceDeletesWholeCharacters)
{
    Model model = ModelOf(kArtists);
    Type(model, "/");
    model.Press({Key::Text, "周"}, kNow);
    EXPECT_EQ(model.Rows(), 1);
    Press(model, Key::Backspace);
    EXPECT_EQ(model.Searching()->query, "");
}

TEST(BrowseModel, EscapeRestoresTheSelectionBeforeASearch)
{
    Model model = ModelOf(kArtists);
    Press(model, Key::Down);
    Type(model, "/zmx");
    EXPECT_EQ(Press(model, Key::Escape).kind, Action::Kind::Nothing);
    EXPECT_EQ(model.Rows(), 7);
    EXPECT_EQ(model.Selected(), 1);
}

TEST(BrowseModel, SelectsTheEntryOpenedFromASearch)
{
    Model model = ModelOf(kArtists);
    Type(model, "/zmx");
    Press(model, Key::Enter);
    Press(model, Key::Escape);
    EXPECT_EQ(SelectedName(model), "周明轩");
}

TEST(BrowseModel, SpaceIsTextInASearchAndPausesElsewhere)
{
    Model model = ModelOf(kArtists);
    EXPECT_EQ(Type(model, " ").kind, Action::Kind::TogglePause);
    EXPECT_EQ(Type(model, ">").kind, Action::Kind::Next);
    EXPECT_EQ(Type(model, "<").kind, Action::Kind::Previous);
    EXPECT_EQ(Type(model, "/zhou ming").kind, Action::Kind::Nothing);
    EXPECT_EQ(SelectedName(model), "周明轩");
}

TEST(BrowseModel, KeepsTheSelectionOfEachLevel)
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

TEST(BrowseModel, RestoresTheCursorOfALevel)
{
    Model model = ModelOf({"Artists"});
    model.Enter("Artists", 0, {5, 4});
    model.SetHeight(2);
    Fill(model, kArtists);
    EXPECT_EQ(model.Selected(), 5);
    EXPECT_EQ(model.Cursor().top, 4);
}

TEST(BrowseModel, DropsTheIndexWhenNamesChange)
{
    Model model = ModelOf(kArtists);
    PutPage(model, 0, kArtists);
    EXPECT_TRUE(model.Current().index);
    PutPage(model, 0, {"Bjarka"});
    EXPECT_FALSE(model.Current().index);
}

TEST(BrowseModel, DropsAllNamesWhenTheCountChanges)
{
    Model model = ModelOf(kArtists);
    Press(model, Key::End);
    model.SetCount(2);
    EXPECT_EQ(model.Current().names.At(0), nullptr);
    EXPECT_EQ(model.Selected(), 1);
}

TEST(BrowseModel, AnyOtherKeyClosesTheHelp)
{
    Model model = ModelOf(kArtists);
    Type(model, "?");
    Press(model, Key::Down);
    EXPECT_EQ(model.Help(), 1);
    EXPECT_EQ(Press(model, Key::Enter).kind, Action::Kind::Nothing);
    EXPECT_FALSE(model.Help());
}

TEST(BrowseModel, RemovesAMessageAfterFiveSecondsOrAKey)
{
    Model model = ModelOf(kArtists);
    model.ShowMessage("refused", kNow);
    model.Tick(kNow + std::chrono::seconds(4));
    EXPECT_EQ(model.Message(), "refused");
    model.Tick(kNow + std::chrono::seconds(5));
    EXPECT_EQ(model.Message(), "");
    model.ShowMessage("refused", kNow);
    Press(model, Key::Down);
    EXPECT_EQ(model.Message(), "");
}
