// Accessory sessions: the texts and payloads that the service receives.
#include "bus/bus_test.h"
#include "support/shared_vectors.h"

namespace test
{
namespace
{
constexpr char kWrite[] = "VecEapWriteBufferShareMemory";
constexpr char kRead[] = "VecEapReadBufferShareMemory";
using Bytes = std::vector<unsigned char>;

class EapTest : public ServiceTest
{
protected:
    // The 512 bytes that the service receives.
    std::string InitRecord(const EAPInfo& info)
    {
        service.Answer("EapInit", "()");
        Connected().EapInit(info);
        GVariant* const arguments = service.LastArguments();
        GVariant* bytes = nullptr;
        g_variant_get(arguments, "(v)", &bytes);
        EXPECT_STREQ(g_variant_get_type_string(bytes), "ay");
        std::string record(static_cast<const char*>(g_variant_get_data(bytes)), g_variant_get_size(bytes));
        g_variant_unref(bytes);
        g_variant_unref(arguments);
        return record;
    }

    IQBXIpodPlayer& Writing()
    {
        service.Answer("EapWrite", "(true,)");
        return Connected();
    }

    // Writes growing payloads until one does not fit; returns the size of the last that did.
    std::size_t LargestPayload(IQBXIpodPlayer& player)
    {
        std::size_t fits = 0;
        for (std::size_t tooLarge = kBufferSegmentSize + 1; tooLarge - fits > 1;)
        {
            const std::size_t middle = fits + (tooLarge - fits) / 2;
            (Fits(player, middle) ? fits : tooLarge) = middle;
        }
        return fits;
    }

    bool Fits(IQBXIpodPlayer& player, std::size_t size)
    {
        Bytes payload(size, 0x5a);
        try
        {
            player.EapWrite(1, payload);
            return true;
        }
        catch (const boost::interprocess::bad_alloc&)
        {
            return false;
        }
    }

    SharedVectors vectors;
};

TEST_F(EapTest, InitSendsTheFirst255BytesOfBothTextsInZeroPaddedSlots)
{
    const auto slot = [](const std::string& text)
    { return text.substr(0, 255) + std::string(256 - std::min<std::size_t>(text.size(), 255), '\0'); };
    for (const std::size_t length : {0U, 1U, 254U, 255U, 256U, 5000U})
    {
        const std::string first(length, 'a');
        const std::string second(length / 2, 'b');

        EXPECT_EQ(InitRecord({first, second}), slot(first) + slot(second)) << length;
    }
}

TEST_F(EapTest, LaunchSendsTheBundleAndReturnsTheReply)
{
    IQBXIpodPlayer& player = Connected();
    std::string bundle = "com.example.app";

    service.Answer("EapLaunchApp", "(true,)");
    EXPECT_EQ(player.EapLaunchApp(bundle), 1);
    service.Answer("EapLaunchApp", "(false,)");
    EXPECT_EQ(player.EapLaunchApp(bundle), 0);

    EXPECT_EQ(bundle, "com.example.app");
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(EapTest, LaunchSendsEvenAnEmptyBundle)
{
    service.Answer("EapLaunchApp", "(false,)");
    std::string none;

    Connected().EapLaunchApp(none);

    EXPECT_THAT(service.Calls(), ElementsAre("EapLaunchApp('',)"));
}

TEST_F(EapTest, WriteStoresThePayloadBeforeTheCall)
{
    Bytes seen;
    IQBXIpodPlayer& player = Connected();
    service.On("EapWrite",
               [&](GVariant*)
               {
                   seen = vectors.Bytes(kWrite);
                   return Reply::With("(true,)");
               });
    Bytes payload = {0, 1, 2, 0xff};

    EXPECT_EQ(player.EapWrite(65535, payload), 1);

    EXPECT_THAT(seen, ElementsAre(0, 1, 2, 0xff));
    EXPECT_THAT(payload, ElementsAre(0, 1, 2, 0xff));
    EXPECT_THAT(service.Calls(), ElementsAre("EapWrite(65535,)"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(EapTest, WriteOfAnEmptyPayloadEmptiesTheBufferAndCalls)
{
    vectors.SetBytes(kWrite, {1, 2, 3});
    Bytes nothing;

    EXPECT_EQ(Writing().EapWrite(300, nothing), 1);

    EXPECT_THAT(vectors.Bytes(kWrite), IsEmpty());
    EXPECT_THAT(service.Calls(), ElementsAre("EapWrite(300,)"));
}

TEST_F(EapTest, WriteReplacesALongerPayloadAndKeepsTheCapacity)
{
    IQBXIpodPlayer& player = Writing();
    Bytes large(1000, 7);
    player.EapWrite(1, large);
    const std::size_t capacity = vectors.Buffer(kWrite).capacity();
    Bytes small = {1, 2};

    player.EapWrite(1, small);

    EXPECT_THAT(vectors.Bytes(kWrite), ElementsAre(1, 2));
    EXPECT_EQ(vectors.Buffer(kWrite).capacity(), capacity);
}

TEST_F(EapTest, WriteGrowsTheBufferInsideTheSegment)
{
    IQBXIpodPlayer& player = Writing();
    for (const std::size_t size : {1U, 100U, 5000U, 200000U})
    {
        Bytes payload(size);
        for (std::size_t i = 0; i < size; ++i) payload[i] = static_cast<unsigned char>(i * 13);

        EXPECT_EQ(player.EapWrite(1, payload), 1);

        EXPECT_EQ(vectors.Bytes(kWrite), payload);
    }
}

TEST_F(EapTest, WriteOfTheLargestPayloadSucceedsAndOneByteMoreThrowsWithoutACall)
{
    IQBXIpodPlayer& player = Writing();
    const std::size_t largest = LargestPayload(player);
    const std::size_t calls = service.Calls().size();
    Bytes payload(largest, 1);
    Bytes tooLarge(largest + 1, 2);

    EXPECT_EQ(player.EapWrite(1, payload), 1);
    EXPECT_THROW(player.EapWrite(2, tooLarge), boost::interprocess::bad_alloc);

    EXPECT_GT(largest, kBufferSegmentSize / 4);
    EXPECT_EQ(service.Calls().size(), calls + 1);
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(EapTest, WriteThatDoesNotFitKeepsTheBytesThatDid)
{
    IQBXIpodPlayer& player = Writing();
    Bytes tooLarge(2 * kBufferSegmentSize, 0x77);

    EXPECT_THROW(player.EapWrite(1, tooLarge), boost::interprocess::bad_alloc);

    const Bytes left = vectors.Bytes(kWrite);
    EXPECT_EQ(left.size(), vectors.Buffer(kWrite).capacity());
    EXPECT_THAT(left, testing::Each(0x77));
    EXPECT_THAT(service.Calls(), IsEmpty());
}

TEST_F(EapTest, WriteSucceedsAfterOneThatDidNotFit)
{
    IQBXIpodPlayer& player = Writing();
    Bytes tooLarge(2 * kBufferSegmentSize);
    EXPECT_THROW(player.EapWrite(1, tooLarge), boost::interprocess::bad_alloc);
    Bytes payload = {1, 2, 3};

    EXPECT_EQ(player.EapWrite(1, payload), 1);

    EXPECT_THAT(vectors.Bytes(kWrite), ElementsAre(1, 2, 3));
}

TEST_F(EapTest, WriteIntoABufferThatReachesBeyondItsSegmentThrowsWithoutACall)
{
    IQBXIpodPlayer& player = Writing();
    Bytes payload = {1};
    player.EapWrite(1, payload);
    ForgeSize(&vectors.Buffer(kWrite), kBufferSegmentSize);

    EXPECT_THROW(player.EapWrite(2, payload), boost::interprocess::interprocess_exception);

    EXPECT_THAT(service.Calls(), ElementsAre("EapWrite(1,)"));
}

TEST_F(EapTest, PayloadsAreInTheVectorsThatTheApplicationPointsAt)
{
    IQBXIpodPlayer& player = Writing();
    player.AddListener(&app);
    OwnBuffer own({7, 8});
    g_VecEapReadBufferShareMemory = own.get();
    g_VecEapWriteBufferShareMemory = own.get();
    Bytes payload = {1, 2, 3};

    Deliver("OnIpodReceiveEapData", "(1,)");
    EXPECT_EQ(player.EapWrite(1, payload), 1);

    EXPECT_THAT(journal, ElementsAre("app.OnIpodReceiveEapData(1, [07 08])"));
    EXPECT_THAT(*own.get(), ElementsAre(1, 2, 3));
}

TEST_F(EapTest, AFailedWriteReturnsZero)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("EapWrite", "(false,)");
    Bytes payload = {1};

    EXPECT_EQ(player.EapWrite(1, payload), 0);
}

TEST_F(EapTest, ReceiveDeliversAnEmptyPayloadToEveryListener)
{
    vectors.SetBytes(kRead, {});
    RecordingListener listeners[] = {{journal, "a"}, {journal, "b"}};
    IQBXIpodPlayer& player = Connected();
    for (auto& listener : listeners) player.AddListener(&listener);

    Deliver("OnIpodReceiveEapData", "(1,)");

    EXPECT_THAT(journal, ElementsAre("a.OnIpodReceiveEapData(1, [])", "b.OnIpodReceiveEapData(1, [])"));
}

TEST_F(EapTest, ReceiveDeliversNoPayloadWhenTheBufferReachesBeyondItsSegment)
{
    vectors.SetBytes(kRead, {1});
    Connected().AddListener(&app);
    ForgeSize(&vectors.Buffer(kRead), kBufferSegmentSize);

    Deliver("OnIpodReceiveEapData", "(1,)");

    EXPECT_THAT(journal, ElementsAre("app.OnIpodReceiveEapData(1, [])"));
}

TEST_F(EapTest, ReceiveCarriesOnlyTheLowByteOfTheSession)
{
    Connected().AddListener(&app);

    DeliverBody("OnIpodReceiveEapData", g_variant_new("(q)", 300));
    Deliver("OnIpodStartEapSession", "(0, 300)");
    Deliver("OnIpodReceiveEapData", "(44,)");
    Deliver("OnIpodStopEapSession", "(300,)");

    EXPECT_THAT(journal, ElementsAre("app.OnIpodStartEapSession(0, 300)", "app.OnIpodReceiveEapData(44, [])",
                                     "app.OnIpodStopEapSession(300)"));
}
}  // namespace
}  // namespace test
