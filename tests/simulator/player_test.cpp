#include "playback/player.h"

#include <gtest/gtest.h>

#include "tracks.h"

using ipodsim::Player;

namespace
{
// Records its notifications.
class Diary : public ipodsim::PlayerObserver
{
public:
    void OnTrack() override { entries += "track "; }
    void OnStatus() override { entries += "status "; }
    void OnProgress() override { entries += "progress "; }
    void OnAmount() override { entries += "amount "; }
    void OnShuffle() override { entries += "shuffle "; }
    void OnRepeat() override { entries += "repeat "; }

    std::string entries;
};

// A player playing the first of three ten-second tracks.
class PlayerWithThreeTracks : public testing::Test
{
protected:
    PlayerWithThreeTracks()
    {
        player.PlayList(Tracks(3), 0);
        diary.entries.clear();
    }

    Diary diary;
    Player player{1, diary};
};
}  // namespace

TEST(Player, PlaysNothingWithAnEmptyList)
{
    Diary diary;
    Player player(1, diary);

    EXPECT_FALSE(player.Play());
    EXPECT_FALSE(player.Restart());
    EXPECT_FALSE(player.Pause());
    EXPECT_FALSE(player.Next());
    EXPECT_FALSE(player.Previous());
    EXPECT_FALSE(player.Wind(true));
    EXPECT_FALSE(player.PlayEntry(0));
    player.Seek(5);
    player.Advance(1000);
    EXPECT_EQ(player.Index(), -1);
    EXPECT_EQ(player.Length(), 0);
    EXPECT_EQ(player.Track(), nullptr);
    EXPECT_EQ(diary.entries, "");
}

TEST(Player, ReportsANewListBeforeItsFirstTrack)
{
    Diary diary;
    Player player(1, diary);

    player.PlayList(Tracks(3), 2);

    EXPECT_EQ(diary.entries, "amount status track progress ");
    EXPECT_EQ(player.Index(), 2);
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PLAYING);
}

TEST(Player, KeepsItsListWhenGivenAnEmptyOne)
{
    Diary diary;
    Player player(1, diary);
    player.PlayList(Tracks(3), 2);

    player.PlayList({}, 0);

    EXPECT_EQ(player.Index(), 2);
}

TEST_F(PlayerWithThreeTracks, AdvancesWithTime)
{
    player.Advance(500);
    player.Advance(700);

    EXPECT_EQ(player.Position(), 1200);
    EXPECT_EQ(diary.entries, "progress progress ");
}

TEST_F(PlayerWithThreeTracks, ResumesAtTheSamePositionAfterAPause)
{
    player.Advance(500);
    EXPECT_TRUE(player.Pause());
    player.Advance(500);
    EXPECT_EQ(player.Position(), 500);

    EXPECT_TRUE(player.Play());
    player.Advance(500);
    EXPECT_EQ(player.Position(), 1000);
}

TEST_F(PlayerWithThreeTracks, CarriesRemainingTimeIntoTheNextTrack)
{
    player.Advance(10200);

    EXPECT_EQ(player.Index(), 1);
    EXPECT_EQ(player.Position(), 200);
    EXPECT_EQ(diary.entries, "track progress ");
}

TEST_F(PlayerWithThreeTracks, StopsAtTheEndAndRestartsFromTheFirstTrack)
{
    for (int i = 0; i < 3; ++i) player.Advance(10000);

    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_STOPPED);
    EXPECT_EQ(player.Index(), -1);
    EXPECT_TRUE(player.Play());
    EXPECT_EQ(player.Index(), 0);
    EXPECT_EQ(player.Position(), 0);
}

TEST_F(PlayerWithThreeTracks, EndsAtMostOneTrackPerStep)
{
    player.SetRepeat(IPOD_REPEAT_ALL);
    player.Advance(1000000);

    EXPECT_EQ(player.Index(), 1);
    EXPECT_EQ(player.Position(), player.Length());
}

TEST_F(PlayerWithThreeTracks, ReportsARepeatedTrackAgain)
{
    player.SetRepeat(IPOD_REPEAT_ONE);
    diary.entries.clear();

    player.Advance(10000);

    EXPECT_EQ(player.Index(), 0);
    EXPECT_EQ(diary.entries, "track progress ");
}

TEST_F(PlayerWithThreeTracks, PreviousRestartsATrackAfterThreeSeconds)
{
    player.Next();
    player.Advance(3001);

    EXPECT_TRUE(player.Previous());
    EXPECT_EQ(player.Index(), 1);
    EXPECT_EQ(player.Position(), 0);

    player.Advance(3000);
    EXPECT_TRUE(player.Previous());
    EXPECT_EQ(player.Index(), 0);
}

TEST_F(PlayerWithThreeTracks, PreviousRestartsTheFirstTrack)
{
    player.Advance(1000);

    EXPECT_TRUE(player.Previous());
    EXPECT_EQ(player.Index(), 0);
    EXPECT_EQ(player.Position(), 0);
}

TEST_F(PlayerWithThreeTracks, NextFailsAtTheEndAndKeepsPlaying)
{
    player.PlayEntry(2);
    player.Advance(100);

    EXPECT_FALSE(player.Next());
    EXPECT_EQ(player.Index(), 2);
    EXPECT_EQ(player.Position(), 100);
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PLAYING);
}

TEST_F(PlayerWithThreeTracks, SkippingKeepsAPausedPlayerPaused)
{
    player.Pause();

    EXPECT_TRUE(player.Next());
    EXPECT_EQ(player.Index(), 1);
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PAUSED);
}

TEST_F(PlayerWithThreeTracks, WindsForwardAtEightTimesNormalSpeed)
{
    EXPECT_TRUE(player.Wind(true));
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_FAST_FORWARD);
    player.Advance(500);
    EXPECT_EQ(player.Position(), 4000);

    EXPECT_TRUE(player.StopWinding());
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PLAYING);
}

TEST_F(PlayerWithThreeTracks, WindsBackwardToTheStartAndResumes)
{
    player.Seek(6000);
    player.Wind(false);
    player.Advance(500);
    EXPECT_EQ(player.Position(), 2000);

    player.Advance(500);
    EXPECT_EQ(player.Position(), 0);
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PLAYING);
}

TEST_F(PlayerWithThreeTracks, WindsIntoTheNextTrackAndPlaysItFromTheStart)
{
    player.Wind(true);
    player.Advance(2000);

    EXPECT_EQ(player.Index(), 1);
    EXPECT_EQ(player.Position(), 0);
    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PLAYING);
}

TEST_F(PlayerWithThreeTracks, ReturnsToPauseAfterWinding)
{
    player.Pause();
    player.Wind(true);
    player.Wind(false);

    player.StopWinding();

    EXPECT_EQ(player.Status(), IPOD_PLAY_STATUS_PAUSED);
}

TEST_F(PlayerWithThreeTracks, StopWindingWithoutWindingChangesNothing)
{
    EXPECT_TRUE(player.StopWinding());

    EXPECT_EQ(diary.entries, "");
}

TEST_F(PlayerWithThreeTracks, SeeksWithinTheTrackOnly)
{
    player.Seek(99999);
    EXPECT_EQ(player.Position(), 10000);
    player.Seek(-5);
    EXPECT_EQ(player.Position(), 0);
}

TEST(Player, PlaysATrackOfUnknownLengthUntilItIsSkipped)
{
    Diary diary;
    Player player(1, diary);
    player.PlayList(Tracks(2, 1000, 0), 0);

    player.Advance(500);
    EXPECT_EQ(player.Index(), 0);
    EXPECT_EQ(player.Position(), 500);
    player.Seek(90000);
    EXPECT_EQ(player.Position(), 90000);
    player.Wind(true);
    player.Advance(3600 * 1000);
    EXPECT_EQ(player.Index(), 0);
    EXPECT_EQ(player.Position(), 90000 + 8 * 3600 * 1000);
    EXPECT_EQ(player.Length(), 0);

    EXPECT_TRUE(player.Next());
    EXPECT_EQ(player.Index(), 1);
    EXPECT_EQ(player.Position(), 0);
}

TEST_F(PlayerWithThreeTracks, ResetsThePositionWhenStopped)
{
    player.Advance(500);

    player.Stop();

    EXPECT_EQ(player.Position(), 0);
    EXPECT_EQ(player.Length(), 0);
    EXPECT_EQ(player.Track(), nullptr);
}

TEST_F(PlayerWithThreeTracks, ReportsAStatusOnlyOnce)
{
    player.Pause();
    player.Pause();

    EXPECT_EQ(diary.entries, "status ");
}
