// Compares random sequences of events, restarts, errors, invalid input, and delays with a model that is independent of
// ipodkit: a table of texts. IPODKIT_SEQUENCES and IPODKIT_SEED set the number of sequences and the first seed.
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include "kit/kit_test.h"

namespace test
{
namespace
{
using Model = std::map<std::string, std::string>;

// The address sanitizer unwinds the stack at every allocation, and ARM builds run in an emulator.
#if defined(__SANITIZE_ADDRESS__) || defined(__arm__)
constexpr int kSequences = 200;
#else
constexpr int kSequences = 1000;
#endif

template <class T>
void Put(Model& model, const char* key, const Known<T>& value)
{
    if (value) model[key] = std::to_string(static_cast<int>(*value));
}

Model ModelOf(const PlayerState& state)
{
    Model model;
    Put(model, "status", state.status);
    Put(model, "shuffle", state.shuffle);
    Put(model, "repeat", state.repeat);
    Put(model, "size", state.queueSize);
    Put(model, "index", state.trackIndex);
    Put(model, "location", state.location);
    Put(model, "source", state.sourceValid);
    Put(model, "carlife", state.carLife);
    Put(model, "level", state.battery ? Known<int>(*state.battery->percent) : Known<int>());
    if (state.track) model["title"] = state.track->title;
    if (state.foregroundApp) model["app"] = *state.foregroundApp;
    if (state.carPlay)
        model["carplay"] = std::to_string(static_cast<int>(state.carPlay->status)) + state.carPlay->serialNumber;
    for (const auto& [number, protocol] : state.accessorySessions)
        model["eap" + std::to_string(number)] = std::to_string(protocol);
    for (const auto& [id, call] : state.calls) model["call" + id] = std::to_string(static_cast<int>(*call.status));
    return model;
}

class StatePropertyTest : public KitTest
{
protected:
    int Random(int limit) { return static_cast<int>(engine() % static_cast<unsigned>(limit)); }

    static int FromEnvironment(const char* name, int otherwise)
    {
        const char* const text = std::getenv(name);
        return text == nullptr ? otherwise : std::atoi(text);
    }

    // The service's reply to a getter, sometimes delayed. After an event, replies must not contradict it: one lock for
    // both makes the service behave as if single-threaded.
    void Answer(const std::string& method, const std::string& body)
    {
        bodies[method] = body;
        const int delay = Random(30) == 0 ? Random(3) : 0;
        service->React(method,
                       [=](GDBusMethodInvocation* call)
                       {
                           const std::lock_guard<std::mutex> lock(bodiesMutex);
                           std::this_thread::sleep_for(std::chrono::milliseconds(delay));
                           GVariant* const value =
                               g_variant_parse(nullptr, bodies[method].c_str(), nullptr, nullptr, nullptr);
                           g_dbus_method_invocation_return_value(call, value);
                           g_variant_unref(value);
                       });
    }

    // A signal with a single number; if there is a getter, it returns the same number.
    void Number(const char* signal, const char* method, const char* key, int limit)
    {
        const std::string number = std::to_string(Random(limit));
        if (method != nullptr) Answer(method, "(" + number + ",)");
        service->Emit(signal, "(" + number + ",)");
        model[key] = number;
    }

    void Flag()
    {
        const bool valid = Random(2) == 1;
        service->Emit("OnIpodSourceValidStatusChange", valid ? "(true,)" : "(false,)");
        model["source"] = valid ? "1" : "0";
    }

    void Track()
    {
        const std::string title = "T" + std::to_string(Random(100));
        const int index = Random(50);
        Answer("GetCurrentMediaInfo", TrackBody(title));
        Answer("GetPlayingTrackIdx", "(" + std::to_string(index) + ",)");
        service->Emit("OnIpodPlayingTrackChange", TrackEvent(index, title));
        model["title"] = title;
        model["index"] = std::to_string(index);
    }

    void App()
    {
        model["app"] = "app" + std::to_string(Random(5));
        Answer("GetIpodAppBundleName", "('" + model["app"] + "',)");
        service->Emit("OnIpodAppBundleNameChange", "('" + model["app"] + "',)");
    }

    void CarPlay()
    {
        const int status = Random(3);
        Answer("GetCarplayDeviceDetectStatus", "(byte " + std::to_string(status) + ", 'S')");
        service->Emit("OnCarplayDeviceDetectStatusChange", "(" + std::to_string(status) + ", 'S')");
        model["carplay"] = std::to_string(status) + "S";
    }

    void Accessory()
    {
        const std::string number = std::to_string(Random(4) * 100);
        if (Random(2) == 1)
        {
            service->Emit("OnIpodStartEapSession", "(5, " + number + ")");
            model["eap" + number] = "5";
        }
        else
        {
            service->Emit("OnIpodStopEapSession", "(" + number + ",)");
            model.erase("eap" + number);
        }
    }

    void Call()
    {
        const auto id = static_cast<unsigned char>('a' + Random(3));
        const auto status = static_cast<unsigned char>(Random(7));
        service->Emit("OnIpodPhoneCallChange", Record({0x2A, 1, id, 0x18, status}));
        const std::string key = std::string("call") + static_cast<char>(id);
        model[key] = std::to_string(status);
        if (status == 0) model.erase(key);
    }

    void Battery()
    {
        const auto level = static_cast<unsigned char>(Random(100));
        service->Emit("OnIpodBatteryChange", Record({16, level}));
        model["level"] = std::to_string(level);
    }

    // Intentionally malformed: not part of the state.
    void Nonsense()
    {
        service->Emit("OnIpodBatteryChange", Record({0xFF}));
        service->Emit("OnIpodPhoneCallChange", Record({}));
        service->Emit("OnIpodReceiveEapData", "(77,)");
    }

    void Event()
    {
        const std::lock_guard<std::mutex> lock(bodiesMutex);
        switch (Random(13))
        {
            case 0:
                return Number("OnPlayStatusChanged", "GetPlayStatus", "status", 5);
            case 1:
                return Number("OnIpodShuffleModeChange", "GetShuffleMode", "shuffle", 3);
            case 2:
                return Number("OnIpodRepeatModeChange", "GetRepeatMode", "repeat", 3);
            case 3:
                return Number("OnIpodPlayingListAmountChange", "GetPlayingListItemsAmount", "size", 9999);
            case 4:
                return Number("OnIpodLocationStatusChange", nullptr, "location", 2);
            case 5:
                return Number("OnCarlifeDeviceDetectStatusChange", "GetCarlifeDeviceDetectStatus", "carlife", 3);
            case 6:
                return Flag();
            case 7:
                return Track();
            case 8:
                return App();
            case 9:
                return CarPlay();
            case 10:
                return Accessory();
            case 11:
                return Call();
            case 12:
                return Random(4) == 0 ? Nonsense() : Battery();
        }
    }

    // The service may return an error, or a reply that violates the contract.
    void Known(const char* method, const char* key, int limit)
    {
        const std::string number = std::to_string(Random(limit));
        switch (Random(8))
        {
            case 0:
                return service->Fail(method, "no");
            case 1:
                return service->AnswerInvalid(method, "('nonsense', 1)");
            default:
                Answer(method, "(" + number + ",)");
                model[key] = number;
        }
    }

    // The next service has different data. Does not wait until the session is ready.
    void Restart(std::uint32_t& generation)
    {
        service = nullptr;
        service = std::make_unique<FakeService>();
        ++generation;
        model.clear();
        Known("GetPlayStatus", "status", 5);
        Known("GetShuffleMode", "shuffle", 3);
        Known("GetRepeatMode", "repeat", 3);
        Known("GetPlayingListItemsAmount", "size", 9999);
        Known("GetPlayingTrackIdx", "index", 50);
        Known("GetCarlifeDeviceDetectStatus", "carlife", 3);
        Answer("GetCurrentMediaInfo", TrackBody("Start"));
        model["title"] = "Start";
    }

    void Sequence(std::uint32_t& generation)
    {
        for (int events = Random(12); events >= 0; --events)
        {
            if (Random(100) == 0) Restart(generation);
            Event();
            if (Random(6) == 0) RunLoopFor(std::chrono::milliseconds(Random(3)));
        }
        Ready(generation);
        EXPECT_TRUE(PassBarrier(*service));
        RunLoopUntil([&] { return ModelOf(*session->State()) == model; }, 200ms);
    }

    std::mutex bodiesMutex;  // guards the bodies
    std::map<std::string, std::string> bodies;
    std::unique_ptr<FakeService> service;  // its thread uses the above
    Model model;
    std::mt19937 engine{static_cast<unsigned>(FromEnvironment("IPODKIT_SEED", 1))};
};

TEST_F(StatePropertyTest, TheStateMatchesEventsAndReplies)
{
    options.settle = 1ms;
    std::uint32_t generation = 0;
    Restart(generation);
    Ready(generation);

    for (int i = 0; i < FromEnvironment("IPODKIT_SEQUENCES", kSequences); ++i)
    {
        Sequence(generation);
        ASSERT_EQ(ModelOf(*session->State()), model) << "after sequence " << i;
    }
    std::printf("restarts: %u\n", generation);
}
}  // namespace
}  // namespace test
