#include "playback/queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tracks.h"

using ipodsim::Queue;
using ipodsim::TrackList;

namespace
{
// The indices of the list in playback order, from the current one to the end.
std::vector<std::size_t> PlayThrough(Queue& queue)
{
    std::vector<std::size_t> order{queue.Index()};
    while (queue.Advance()) order.push_back(queue.Index());
    return order;
}
}  // namespace

TEST(Queue, AnEmptyListHasNoCurrentTrack)
{
    Queue queue(1);

    EXPECT_EQ(queue.Current(), nullptr);
    EXPECT_FALSE(queue.Next());
    EXPECT_FALSE(queue.Previous());
    EXPECT_FALSE(queue.Advance());
    EXPECT_FALSE(queue.Jump(0));
}

TEST(Queue, AnEmptyListAcceptsEveryMode)
{
    Queue queue(1);

    for (const auto mode : {IPOD_SHUFFLE_SONGS, IPOD_SHUFFLE_ALBUMS, IPOD_SHUFFLE_OFF})
    {
        queue.SetShuffle(mode);
        queue.Fill({}, 0);
        EXPECT_EQ(queue.Shuffle(), mode);
        EXPECT_FALSE(queue.Next());
    }
}

TEST(Queue, StartsAtTheSelectedEntryAndEndsAfterTheLast)
{
    Queue queue(1);
    queue.Fill(Tracks(4), 1);

    EXPECT_EQ(PlayThrough(queue), (std::vector<std::size_t>{1, 2, 3}));
    EXPECT_EQ(queue.Index(), 0U) << "back at the first entry";
}

TEST(Queue, StaysAtTheFirstAndTheLastEntryWithoutRepeat)
{
    Queue queue(1);
    queue.Fill(Tracks(2), 1);

    EXPECT_FALSE(queue.Next());
    EXPECT_EQ(queue.Index(), 1U);
    EXPECT_TRUE(queue.Previous());
    EXPECT_FALSE(queue.Previous());
    EXPECT_EQ(queue.Index(), 0U);
}

TEST(Queue, RepeatAllWrapsAroundInBothDirections)
{
    Queue queue(1);
    queue.Fill(Tracks(3), 2);
    queue.SetRepeat(IPOD_REPEAT_ALL);

    EXPECT_TRUE(queue.Advance());
    EXPECT_EQ(queue.Index(), 0U);
    EXPECT_TRUE(queue.Previous());
    EXPECT_EQ(queue.Index(), 2U);
}

TEST(Queue, RepeatOneRepeatsTheTrackUntilTheUserSkips)
{
    Queue queue(1);
    queue.Fill(Tracks(3), 1);
    queue.SetRepeat(IPOD_REPEAT_ONE);

    EXPECT_TRUE(queue.Advance());
    EXPECT_EQ(queue.Index(), 1U);
    EXPECT_TRUE(queue.Next());
    EXPECT_EQ(queue.Index(), 2U);
}

TEST(Queue, ShuffledSongsStartAtTheSelectedOneAndPlayOnceEach)
{
    Queue queue(7);
    queue.SetShuffle(IPOD_SHUFFLE_SONGS);
    queue.Fill(Tracks(50), 20);

    const auto order = PlayThrough(queue);

    EXPECT_EQ(order.front(), 20U);
    EXPECT_EQ(std::set<std::size_t>(order.begin(), order.end()).size(), 50U);
    EXPECT_FALSE(std::is_sorted(order.begin() + 1, order.end()));
}

TEST(Queue, TheSeedDeterminesTheOrder)
{
    const auto orderOf = [](unsigned seed)
    {
        Queue queue(seed);
        queue.SetShuffle(IPOD_SHUFFLE_SONGS);
        queue.Fill(Tracks(50), 0);
        return PlayThrough(queue);
    };

    EXPECT_EQ(orderOf(3), orderOf(3));
    EXPECT_NE(orderOf(3), orderOf(4));
}

TEST(Queue, ShuffledAlbumsKeepTheirSongsTogetherAndInOrder)
{
    Queue queue(5);
    queue.SetShuffle(IPOD_SHUFFLE_ALBUMS);
    queue.Fill(Tracks(12, 3), 4);  // albums 0-2, 3-5, 6-8, 9-11

    const auto order = PlayThrough(queue);

    ASSERT_EQ(order.size(), 12U);
    EXPECT_EQ((std::vector<std::size_t>{order.begin(), order.begin() + 3}), (std::vector<std::size_t>{4, 5, 3}));
    for (std::size_t i = 3; i < 12; i += 3)
    {
        EXPECT_EQ(order[i] % 3, 0U);
        EXPECT_EQ(order[i + 1], order[i] + 1);
        EXPECT_EQ(order[i + 2], order[i] + 2);
    }
}

TEST(Queue, ChangingTheShuffleModeKeepsTheCurrentTrack)
{
    Queue queue(5);
    queue.Fill(Tracks(9), 4);

    for (const auto mode : {IPOD_SHUFFLE_SONGS, IPOD_SHUFFLE_ALBUMS, IPOD_SHUFFLE_OFF})
    {
        queue.SetShuffle(mode);
        EXPECT_EQ(queue.Index(), 4U);
    }
    EXPECT_TRUE(queue.Next());
    EXPECT_EQ(queue.Index(), 5U) << "without shuffling, list order";
}

TEST(Queue, JumpsToAnEntryRegardlessOfTheOrder)
{
    Queue queue(5);
    queue.SetShuffle(IPOD_SHUFFLE_SONGS);
    queue.Fill(Tracks(9), 0);

    EXPECT_TRUE(queue.Jump(6));
    EXPECT_EQ(queue.Index(), 6U);
    EXPECT_FALSE(queue.Jump(9));
    EXPECT_FALSE(queue.Jump(-1));
    EXPECT_EQ(queue.Index(), 6U);
}
