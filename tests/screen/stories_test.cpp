// What people do with the screen, from tap to sound.
#include <QTest>

#include "screen_fixture.h"

namespace screentest
{
using Stories = ScreenTest;

TEST_F(Stories, ASongIsFoundPlayedAndPaused)
{
    StartService();
    Show();
    PlaySong("Gravel");
    EXPECT_EQ(TextOf("artist"), "The Paper Kites of Mill Road");
    Tap("play");
    EXPECT_TRUE(Until([this] { return Service().Calls("Pause").size() == 1; }));
}
}  // namespace screentest
