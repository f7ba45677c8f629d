// Details and artwork of the playing track: records in variants, images in shared memory.
#include "bus/bus_test.h"
#include "support/shared_vectors.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
constexpr char kNothing[] = "\"\", \"\", \"\", \"\", 0, 0, 0, 0";
constexpr char kPicture[] = "VecArtworkBufferShareMemory";
constexpr char kChangedPicture[] = "VecArtworkChangeBufferShareMemory";

const std::string kCurrentTrack = TrackRecord({"Title", "Artist", "Album", "Genre"}, {1, -2, 3, -4});
constexpr char kTrackText[] = "\"Title\", \"Artist\", \"Album\", \"Genre\", 1, -2, 3, -4";

// Records arrive in the reply of GetCurrentMediaInfo() and in the signal OnIpodPlayingTrackChange; both must be decoded
// the same way.
class TrackTest : public ServiceTest
{
protected:
    void SetUp() override { Connected(); }

    std::string FromReply(const std::string& variant)
    {
        service.Answer("GetCurrentMediaInfo", "(" + variant + ",)");
        return Text(QBX_GetIpodPlayer()->GetCurrentMediaInfo());
    }

    std::string FromSignal(const std::string& variant)
    {
        Journal journal;
        RecordingListener listener(journal, "app");
        QBX_GetIpodPlayer()->AddListener(&listener);
        Deliver("OnIpodPlayingTrackChange", "(0, " + variant + ")");
        QBX_GetIpodPlayer()->RemoveListener(&listener);
        return Join(journal, " ");
    }

    void ExpectBoth(const std::string& variant, const std::string& expected)
    {
        EXPECT_EQ(FromReply(variant), expected);
        EXPECT_EQ(FromSignal(variant), "app.OnIpodPlayingTrackChange(0, " + expected + ")");
    }
};

using TrackWithoutServiceTest = NoServiceTest;
using TrackWithoutProxyTest = ClientTest;

// The same for the words of the artwork head.
class ArtworkTest : public ServiceTest
{
protected:
    void SetUp() override { Connected(); }

    std::string FromReply(const std::string& variant)
    {
        service.Answer("GetPlayingTrackAlbumArtwork", "(" + variant + ",)");
        return Text(QBX_GetIpodPlayer()->GetPlayingTrackAlbumArtwork());
    }

    std::string FromSignal(const std::string& variant)
    {
        Journal journal;
        RecordingListener listener(journal, "app");
        QBX_GetIpodPlayer()->AddListener(&listener);
        Deliver("OnIpodArtworkChange", "(" + variant + ",)");
        QBX_GetIpodPlayer()->RemoveListener(&listener);
        return Join(journal, " ");
    }

    void ExpectBoth(const std::string& variant, const std::string& expected)
    {
        EXPECT_EQ(FromReply(variant), expected);
        EXPECT_EQ(FromSignal(variant), "app.OnIpodArtworkChange(" + expected + ")");
    }

    SharedVectors vectors;
};

TEST_F(TrackTest, IsReadFromARecordOfExactly1040Bytes)
{
    ExpectBoth(BytesInVariant(kCurrentTrack), kTrackText);
}

TEST_F(TrackTest, IsReadWithOneCallAndNoLogLine)
{
    EXPECT_EQ(FromReply(BytesInVariant(kCurrentTrack)), kTrackText);

    EXPECT_THAT(service.Calls(), ElementsAre("GetCurrentMediaInfo()"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(TrackTest, KeepsTextsOf255Characters)
{
    const std::string a(255, 'a');
    const std::string b(255, 'b');
    const std::string c(255, 'c');
    const std::string d(255, 'd');
    ExpectBoth(BytesInVariant(TrackRecord({a, b, c, d}, {0, 0, 0, 0})),
               Join({Text(a), Text(b), Text(c), Text(d), "0, 0, 0, 0"}, ", "));
}

TEST_F(TrackTest, ATextWithoutNulContinuesIntoTheNextSlot)
{
    const std::string full(256, 'a');
    ExpectBoth(BytesInVariant(TrackRecord({full, "next", "3", "4"}, {0, 0, 0, 0})),
               Join({Text(full + "next"), "\"next\", \"3\", \"4\", 0, 0, 0, 0"}, ", "));
}

TEST_F(TrackTest, ATextWithoutNulEndsWithTheRecord)
{
    const std::string received = FromReply(BytesInVariant(std::string(1040, 'z')));

    EXPECT_EQ(received.substr(0, 1042), Text(std::string(1040, 'z')));
}

TEST_F(TrackTest, AShortRecordLeavesTheRestEmpty)
{
    ExpectBoth(BytesInVariant(kCurrentTrack.substr(0, 258)), "\"Title\", \"Ar\", \"\", \"\", 0, 0, 0, 0");
}

TEST_F(TrackTest, AnEmptyRecordIsAnEmptyTrack)
{
    ExpectBoth("<@ay []>", kNothing);
}

TEST_F(TrackTest, ExcessBytesOfALongRecordAreIgnored)
{
    ExpectBoth(BytesInVariant(kCurrentTrack + std::string(3000, '!')), kTrackText);
}

TEST_F(TrackTest, AVariantOfAnotherTypeIsAnEmptyTrack)
{
    for (const char* const variant : {"<'text'>", "<(1, 2)>", "<[1, 2]>", "<<[byte 65]>>", "<@as []>"})
        ExpectBoth(variant, kNothing);
}

TEST_F(TrackTest, AFailedCallIsLoggedAndReturnsAnEmptyTrack)
{
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    service.Fail("GetCurrentMediaInfo", "no track");

    EXPECT_EQ(Text(player.GetCurrentMediaInfo()), kNothing);

    EXPECT_THAT(LogLines(),
                ElementsAre("100 GetCurrentMediaInfo: com_zarn_linux_ipod_call_get_current_media_info_sync: "
                            "Failed to call dbus method. Reason: GDBus.Error:com.example.Broken: no track."));
    EXPECT_THAT(LogFormats(),
                ElementsAre("100 GetCurrentMediaInfo: com_zarn_linux_ipod_call_get_current_media_info_sync: "
                            "Failed to call dbus method. Reason: %s."));
}

TEST_F(TrackTest, AReplyOfTheWrongTypeIsAFailedCall)
{
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    service.AnswerInvalid("GetCurrentMediaInfo", "(17,)");

    EXPECT_EQ(Text(player.GetCurrentMediaInfo()), kNothing);

    EXPECT_EQ(LogLines().size(), 1U);
}

TEST_F(TrackWithoutServiceTest, IsEmptyAndTheReasonIsLogged)
{
    EXPECT_EQ(Text(Unconnected().GetCurrentMediaInfo()), kNothing);

    EXPECT_THAT(LogLines(), ElementsAre(testing::HasSubstr("org.freedesktop.DBus.Error.ServiceUnknown")));
}

TEST_F(TrackWithoutProxyTest, IsEmptyAndNothingIsLogged)
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    ClearLog();

    EXPECT_EQ(Text(player->GetCurrentMediaInfo()), kNothing);

    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(ArtworkTest, CombinesWordsFromTheRecordAndTheImageInSharedMemory)
{
    vectors.SetBytes(kPicture, {0xff, 0xd8, 0x00});
    vectors.SetBytes(kChangedPicture, {0x89, 0x50});
    const std::string variant = BytesInVariant(Words({1, 2, 0xfffffffe, 4}));
    EXPECT_EQ(FromReply(variant), "1, 2, 4294967294, 4, [ff d8 00]");
    EXPECT_EQ(FromSignal(variant), "app.OnIpodArtworkChange(1, 2, 4294967294, 4, [89 50])");
}

TEST_F(ArtworkTest, MayHaveAnEmptyImage)
{
    ExpectBoth(BytesInVariant(Words({5, 6, 7, 8})), "5, 6, 7, 8, []");
}

TEST_F(ArtworkTest, HasNoImageWhenTheVectorReachesBeyondItsSegment)
{
    for (const char* const vector : {kPicture, kChangedPicture})
    {
        vectors.SetBytes(vector, {1});
        ForgeSize(&vectors.Buffer(vector), kBufferSegmentSize);
    }
    ExpectBoth(BytesInVariant(Words({5, 6, 7, 8})), "5, 6, 7, 8, []");
}

TEST_F(ArtworkTest, HasItsImageFromTheVectorThatTheApplicationPointsAt)
{
    OwnBuffer own({1, 2, 3});
    g_VecArtworkBufferShareMemory = own.get();
    g_VecArtworkChangeBufferShareMemory = own.get();
    ExpectBoth(BytesInVariant(Words({5, 6, 7, 8})), "5, 6, 7, 8, [01 02 03]");
}

TEST_F(ArtworkTest, AShortHeadLeavesTheRestZero)
{
    ExpectBoth(BytesInVariant(Words({5, 6}) + "\x07"), "5, 6, 7, 0, []");
}

TEST_F(ArtworkTest, ExcessBytesOfALongHeadAreIgnored)
{
    ExpectBoth(BytesInVariant(Words({5, 6, 7, 8}) + std::string(5000, '!')), "5, 6, 7, 8, []");
}

TEST_F(ArtworkTest, AVariantOfAnotherTypeHasWordsOfZero)
{
    for (const char* const variant : {"<'text'>", "<(1, 2)>", "<[1, 2]>", "<<[byte 65]>>", "<@as []>"})
        ExpectBoth(variant, "0, 0, 0, 0, []");
}

TEST_F(ArtworkTest, AFailedCallHasWordsOfZeroAndThePreviousImage)
{
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    vectors.SetBytes(kPicture, {1, 2, 3});
    service.Fail("GetPlayingTrackAlbumArtwork", "no picture");

    EXPECT_EQ(Text(player.GetPlayingTrackAlbumArtwork()), "0, 0, 0, 0, [01 02 03]");
}

TEST_F(ArtworkTest, MayFillTheSegment)
{
    std::vector<unsigned char> large(900000);
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<unsigned char>(i * 7);
    vectors.SetBytes(kPicture, large);
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    service.Answer("GetPlayingTrackAlbumArtwork", "(" + BytesInVariant(Words({0, 900000, 0, 0})) + ",)");

    EXPECT_EQ(player.GetPlayingTrackAlbumArtwork().image, large);
}

TEST_F(ArtworkTest, ACallersImageIsIndependentOfSharedMemory)
{
    vectors.SetBytes(kPicture, {1, 2, 3});
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    service.Answer("GetPlayingTrackAlbumArtwork", "(<@ay []>,)");

    const QBXTrackArtwork artwork = player.GetPlayingTrackAlbumArtwork();
    vectors.SetBytes(kPicture, {9, 9, 9});

    EXPECT_THAT(artwork.image, ElementsAre(1, 2, 3));
}
}  // namespace
}  // namespace test
