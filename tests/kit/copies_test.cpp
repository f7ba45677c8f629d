// How many times an image is copied on its way from the segment to the application.
#include "kit/kit_test.h"
#include "support/counted_malloc.h"

namespace test
{
namespace
{
// Half of the segment, because a growing vector needs its old storage as well.
const std::vector<unsigned char> kImage(kBufferSegmentSize / 2, 0xAB);
static_assert(kBufferSegmentSize / 2 >= kLargeAllocation);

using CopiesTest = ReadyTest;

TEST_F(CopiesTest, AnEventsArtworkIsCopiedOnce)
{
    shared.SetBytes("VecArtworkChangeBufferShareMemory", kImage);
    PicturePtr ofEvent;
    PicturePtr ofState;
    const Subscription events =
        session->OnEvent("event", [&](const Event& event) { ofEvent = std::get<ArtworkChanged>(event).picture; });
    const Subscription states =
        session->OnState("state", [&](const StatePtr& state, Fields) { ofState = state->Artwork(); });
    const long before = LargeAllocations();

    Emit("OnIpodArtworkChange", PictureBody());

    EXPECT_EQ(LargeAllocations() - before, 1);
    ASSERT_NE(ofState, nullptr);
    EXPECT_EQ(ofState, ofEvent);
    EXPECT_EQ(ofState->bytes, kImage);
}

TEST_F(CopiesTest, ArtworkOfTheStateIsCopiedOnce)
{
    shared.SetBytes("VecArtworkBufferShareMemory", kImage);
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    const long before = LargeAllocations();

    const Result<StatePtr> state = Completed(session->Refreshed(Field::Artwork));

    EXPECT_EQ(LargeAllocations() - before, 1);
    EXPECT_EQ(state.value()->Artwork()->bytes, kImage);
}

TEST_F(CopiesTest, ArtworkOfACommandIsCopiedOnce)
{
    shared.SetBytes("VecArtworkBufferShareMemory", kImage);
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    const long before = LargeAllocations();

    const Result<ArtworkChanged> artwork = Completed(Ask().Artwork());

    EXPECT_EQ(LargeAllocations() - before, 1);
    EXPECT_EQ(artwork.value().picture->bytes, kImage);
}
}  // namespace
}  // namespace test
