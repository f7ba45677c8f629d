// Each page as it looks, with the built-in library and nothing that moves.
#include "pictures.h"
#include "screen_fixture.h"

namespace screentest
{
namespace
{
using Pictures = ScreenTest;

// Returns once nothing changes any more: artwork and lists arrive on their own.
QImage Settled(QQuickView& window)
{
    QImage before;
    QImage now = window.grabWindow();
    int same = 0;
    const auto settled = [&]
    {
        before = std::exchange(now, window.grabWindow());
        same = before == now ? same + 1 : 0;
        return same > 20;
    };
    EXPECT_TRUE(Until(settled));
    return now;
}

#define EXPECT_LOOKS_LIKE(file) EXPECT_EQ(DifferenceFrom(file, Settled(Window())), "")
}  // namespace

TEST_F(Pictures, NowPlayingAtNight)
{
    StartService();
    Show();
    PauseInTheMiddle("Blue Lantern");
    EXPECT_LOOKS_LIKE(DOCS "/screen-now-playing.png");
}
}  // namespace screentest
