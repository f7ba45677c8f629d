#include "kit/kit_test.h"

namespace test
{
namespace
{
std::string ByteText(const std::vector<unsigned char>& bytes)
{
    std::string text = "[byte ";
    for (const unsigned char byte : bytes) text += (text.size() > 6 ? "," : "") + std::to_string(byte);
    return bytes.empty() ? "@ay []" : text + "]";
}

std::vector<unsigned char> TrackRecord(const std::string& title, int milliseconds)
{
    std::vector<unsigned char> record(1040);
    std::copy(title.begin(), title.end(), record.begin());
    for (unsigned i = 0; i < 4; ++i) record[1024 + i] = static_cast<unsigned char>(milliseconds >> 8 * i);
    return record;
}
}  // namespace

std::string Record(const std::vector<unsigned char>& bytes)
{
    return "(<" + ByteText(bytes) + ">,)";
}

std::string TrackBody(const std::string& title, int milliseconds)
{
    return Record(TrackRecord(title, milliseconds));
}

std::string TrackEvent(int index, const std::string& title, int milliseconds)
{
    return "(" + std::to_string(index) + ", <" + ByteText(TrackRecord(title, milliseconds)) + ">)";
}

std::string PictureBody(unsigned char noPicture)
{
    std::vector<unsigned char> head(16);
    head[0] = noPicture;
    return Record(head);
}

namespace
{
// The requests that a session makes before it is Ready, with their replies.
const std::vector<std::pair<const char*, std::string>>& StateReplies()
{
    static const std::vector<std::pair<const char*, std::string>> replies{
        {"GetCurrentMediaInfo", TrackBody("Song", 60000)},
        {"GetPlayingTrackIdx", "(1,)"},
        {"GetPlayStatus", "(1,)"},
        {"GetPlayPosition", "(1000, 60000)"},
        {"GetShuffleMode", "(2,)"},
        {"GetRepeatMode", "(1,)"},
        {"GetPlayingListItemsAmount", "(3,)"},
        {"GetDeviceAmount", "(1,)"},
        {"GetIpodName", "('Phone',)"},
        {"GetIpodAppBundleName", "('com.example.app',)"},
        {"GetCarplayDeviceDetectStatus", "(0, 'SERIAL')"},
        {"GetCarlifeDeviceDetectStatus", "(1,)"},
        {"GetPlayingTrackAlbumArtwork", PictureBody(1)},
    };
    return replies;
}
}  // namespace

void AnswerState(FakeService& service)
{
    for (const auto& [method, reply] : StateReplies()) service.Answer(method, reply);
}

std::size_t HoldState(FakeService& service)
{
    for (const auto& [method, reply] : StateReplies()) service.Hold(method);
    return StateReplies().size();
}

std::pair<int, int> RangeOf(GVariant* arguments)
{
    std::pair<int, int> range;
    g_variant_get(arguments, "(ii)", &range.first, &range.second);
    return range;
}

Session& KitTest::Open(const SessionOptions& given)
{
    options = given;
    auto opened = Session::Open(options);
    if (!opened) throw std::runtime_error(opened.error().Text());
    session = std::move(*opened);
    return *session;
}

Session& KitTest::Ready(std::uint32_t generation)
{
    if (session == nullptr) Open(options);
    EXPECT_TRUE(RunLoopUntil(
        [&]
        {
            const Connection connection = session->Connection();
            return connection.phase == Phase::Ready && connection.generation == generation;
        }));
    return *session;
}

void KitTest::Settle(FakeService& service)
{
    EXPECT_TRUE(PassBarrier(service));
    RunLoopFor(options.settle + 10ms);
}

void ServedTest::Emit(const std::string& signal, const std::string& body)
{
    service.Emit(signal, body);
    Settle(service);
}

std::ptrdiff_t ServedTest::Calls(const std::string& call) const
{
    const std::vector<std::string> calls = service.Calls();
    return std::count(calls.begin(), calls.end(), call);
}
}  // namespace test
