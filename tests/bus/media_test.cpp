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

// How a record arrives: in the reply of a method and in a signal. Both must be decoded the same way.
struct Record
{
    const char* method;
    std::string (*read)(IQBXIpodPlayer&);
    const char* signal;
    std::string before;  ///< of the signal's body, before the variant
    std::string after;
};

class RecordTest : public ServiceTest
{
protected:
    explicit RecordTest(Record record) : m_record(std::move(record)) {}

    void SetUp() override { Connected(); }

    std::string FromReply(const std::string& variant)
    {
        service.Answer(m_record.method, "(" + variant + ",)");
        return m_record.read(*QBX_GetIpodPlayer());
    }

    // The arguments of the event.
    std::string FromSignal(const std::string& variant)
    {
        journal.clear();
        QBX_GetIpodPlayer()->AddListener(&app);
        Deliver(m_record.signal, "(" + m_record.before + variant + m_record.after + ")");
        QBX_GetIpodPlayer()->RemoveListener(&app);
        const std::string event = Join(journal, " ");
        const std::string begin = std::string("app.") + m_record.signal + "(" + m_record.before;
        EXPECT_EQ(event.substr(0, begin.size()), begin);
        return event.substr(begin.size(), event.size() - begin.size() - 1);
    }

    void ExpectBoth(const std::string& variant, const std::string& expected)
    {
        EXPECT_EQ(FromReply(variant), expected);
        EXPECT_EQ(FromSignal(variant), expected);
    }

    void ExpectOtherTypesAreRead(const std::string& asWhat)
    {
        for (const char* const variant : {"<'text'>", "<(1, 'x')>", "<[1, 2]>", "<byte 7>", "<[true]>", "<{'a': <1>}>",
                                          "<<[byte 65]>>", "<@as []>"})
            ExpectBoth(variant, asWhat);
        ExpectBoth(std::string(60, '<') + "[byte 65]" + std::string(60, '>'), asWhat);
    }

private:
    const Record m_record;
};

class TrackTest : public RecordTest
{
protected:
    TrackTest()
        : RecordTest({"GetCurrentMediaInfo", [](IQBXIpodPlayer& player) { return Text(player.GetCurrentMediaInfo()); },
                      "OnIpodPlayingTrackChange", "0, ", ""})
    {
    }
};

class ArtworkTest : public RecordTest
{
protected:
    ArtworkTest()
        : RecordTest({"GetPlayingTrackAlbumArtwork",
                      [](IQBXIpodPlayer& player) { return Text(player.GetPlayingTrackAlbumArtwork()); },
                      "OnIpodArtworkChange", "", ","})
    {
    }

    SharedVectors vectors;
};

TEST_F(TrackTest, IsReadFromARecordOfExactly1040Bytes)
{
    ExpectBoth(BytesInVariant(kCurrentTrack), kTrackText);
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
    const auto text = [](std::size_t length) { return Text(std::string(length, 'z')); };
    const std::string word = "2054847098";
    ExpectBoth(BytesInVariant(std::string(1040, 'z')),
               Join({text(1040), text(784), text(528), text(272), word, word, word, word}, ", "));
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
    ExpectOtherTypesAreRead(kNothing);
}

TEST_F(ArtworkTest, CombinesWordsFromTheRecordAndTheImageInSharedMemory)
{
    vectors.SetBytes(kPicture, {0xff, 0xd8, 0x00});
    vectors.SetBytes(kChangedPicture, {0x89, 0x50});
    const std::string variant = BytesInVariant(Words({1, 2, 0xfffffffe, 4}));
    EXPECT_EQ(FromReply(variant), "1, 2, 4294967294, 4, [ff d8 00]");
    EXPECT_EQ(FromSignal(variant), "1, 2, 4294967294, 4, [89 50]");
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
    ExpectOtherTypesAreRead("0, 0, 0, 0, []");
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
