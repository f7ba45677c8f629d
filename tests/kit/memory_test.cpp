#include <ipodkit/variant.h>

#include <atomic>
#include <mutex>

#include "kit/kit_test.h"

namespace test
{
namespace
{
/// A companion daemon that answers GetAll as the test scripts it, on the thread of its connection.
class FakeDaemon
{
public:
    FakeDaemon()
    {
        char* const address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        m_connection = g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
        g_free(address);
        g_dbus_connection_add_filter(m_connection, Filter, this, nullptr);
        GVariant* const reply = g_dbus_connection_call_sync(
            m_connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", "com.zarn.linux.ipod.State", 4U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
            nullptr);
        g_variant_unref(reply);
    }
    ~FakeDaemon()
    {
        g_dbus_connection_close_sync(m_connection, nullptr, nullptr);
        g_object_unref(m_connection);
    }
    FakeDaemon(const FakeDaemon&) = delete;
    FakeDaemon& operator=(const FakeDaemon&) = delete;

    /// Answers with properties in GVariant text: "{'Location': <'requested'>}".
    void Answer(const std::string& properties)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_properties = properties;
        if (m_held != nullptr) Respond(std::exchange(m_held, nullptr));
    }

    int Asked() const { return m_asked; }
    bool MayBeStarted() const { return m_mayBeStarted; }

private:
    static GDBusMessage* Filter(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer daemon)
    {
        const char* const member = g_dbus_message_get_member(message);
        if (incoming == FALSE || g_strcmp0(member, "GetAll") != 0) return message;
        static_cast<FakeDaemon*>(daemon)->Take(message);
        return nullptr;
    }

    // Without an answer yet, the call is held.
    void Take(GDBusMessage* call)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_mayBeStarted = (g_dbus_message_get_flags(call) & G_DBUS_MESSAGE_FLAGS_NO_AUTO_START) == 0;
        ++m_asked;
        if (m_properties.empty())
            m_held = call;
        else
            Respond(call);
    }

    void Respond(GDBusMessage* call) const
    {
        GDBusMessage* const reply = g_dbus_message_new_method_reply(call);
        GVariant* const body = g_variant_parse(nullptr, m_properties.c_str(), nullptr, nullptr, nullptr);
        g_dbus_message_set_body(reply, g_variant_new_tuple(&body, 1));
        g_dbus_connection_send_message(m_connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
        g_object_unref(reply);
        g_object_unref(call);
    }

    GDBusConnection* m_connection;
    std::mutex m_mutex;
    std::string m_properties;
    GDBusMessage* m_held = nullptr;
    std::atomic<int> m_asked{0};
    std::atomic<bool> m_mayBeStarted{false};
};

class MemoryTest : public ServedTest
{
protected:
    std::string Of(const ipodsim::ScriptedService& one, const std::string& fields) const
    {
        return "@a{sv} {'Service': <'" + one.UniqueName() + "'>" + fields + "}";
    }

    FakeDaemon daemon;
};

constexpr char kCallAndBattery[] =
    ", 'Calls': <{'a': @a{sv} {'uuid': <'a'>, 'status': <'active'>, 'name': <'Li Lei'>}}>"
    ", 'Battery': <@a{sv} {'percent': <80>, 'status': <'unknown:9'>}>";

TEST_F(MemoryTest, BringsWhatEventsReportedBeforeTheSession)
{
    daemon.Answer(Of(service, kCallAndBattery));

    Ready();
    ASSERT_TRUE(RunLoopUntil([&] { return !State()->remembered.Empty(); }));

    EXPECT_EQ(State()->calls.at("a").status, CallStatus::Active);
    EXPECT_EQ(State()->calls.at("a").name, "Li Lei");
    EXPECT_EQ(State()->calls.at("a").id, "a");
    EXPECT_EQ(State()->battery->percent, 80);
    EXPECT_EQ(static_cast<int>(*State()->battery->charging), 9);
    EXPECT_EQ(State()->remembered, Field::Calls | Field::Battery);
    EXPECT_EQ(State()->service, service.UniqueName());
    EXPECT_FALSE(daemon.MayBeStarted());
}

TEST_F(MemoryTest, OfAnotherServiceIsIgnored)
{
    daemon.Answer("@a{sv} {'Service': <':1.999'>, 'Location': <'requested'>}");

    Ready();
    ASSERT_TRUE(RunLoopUntil([&] { return daemon.Asked() == 1; }));
    Settle(service);

    EXPECT_FALSE(State()->location);
    EXPECT_EQ(State()->remembered, Fields());
}

TEST_F(MemoryTest, WithUnexpectedTypesIsSkipped)
{
    daemon.Answer(Of(service,
                     ", 'Battery': <7>, 'Calls': <@a{sv} {}>, 'SourceValid': <'yes'>, 'Wireless': "
                     "<@a{sv} {'available': <'no'>, 'address': <'00:11'>}>, 'Future': <1>, 'Location': <'odd'>"));

    Ready();
    ASSERT_TRUE(RunLoopUntil([&] { return !State()->remembered.Empty(); }));

    EXPECT_EQ(State()->remembered, Fields(Field::Wireless));
    EXPECT_EQ(State()->wireless->deviceAddress, "00:11");
}

TEST_F(MemoryTest, YieldsToEventsThatArriveBeforeIt)
{
    Ready();
    ASSERT_TRUE(RunLoopUntil([&] { return daemon.Asked() == 1; }));
    service.Emit("OnIpodBatteryChange", Record({16, 50}));
    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'a', 0x18, 0}));

    daemon.Answer(Of(service, std::string(kCallAndBattery) + ", 'Location': <'requested'>"));
    ASSERT_TRUE(RunLoopUntil([&] { return State()->location.has_value(); }));

    EXPECT_EQ(State()->battery->percent, 50);
    EXPECT_THAT(State()->calls, IsEmpty());
    EXPECT_EQ(State()->remembered, Fields(Field::Location));
}

TEST_F(MemoryTest, EndsFieldByFieldWithTheEventsThatFollow)
{
    daemon.Answer(Of(service, kCallAndBattery));
    Ready();
    ASSERT_TRUE(RunLoopUntil([&] { return !State()->remembered.Empty(); }));

    Emit("OnIpodBatteryChange", Record({16, 80}));
    EXPECT_EQ(State()->remembered, Fields(Field::Calls));

    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'a', 0x18, 0}));
    EXPECT_EQ(State()->remembered, Fields());
}

TEST_F(MemoryTest, IsDroppedWithTheNextService)
{
    daemon.Answer(Of(service, kCallAndBattery));
    Ready();
    ASSERT_TRUE(RunLoopUntil([&] { return !State()->remembered.Empty(); }));

    service.Vanish();
    ASSERT_TRUE(RunLoopUntil([&] { return State()->phase == Phase::Lost; }));
    EXPECT_THAT(State()->calls, IsEmpty());
    AnsweringService next;
    Ready(2);
    ASSERT_TRUE(RunLoopUntil([&] { return daemon.Asked() == 2; }));
    Settle(next);

    EXPECT_FALSE(State()->battery);
    EXPECT_EQ(State()->remembered, Fields());
    EXPECT_EQ(State()->service, next.UniqueName());
}

TEST(VariantTest, ValuesReturnFromTheirVariants)
{
    PhoneCall call;
    call.id = "a";
    call.status = CallStatus::Held;
    call.conferenceGroup = std::uint8_t{3};
    call.start = PhoneCall::Time(std::chrono::seconds(1700000000));
    const std::map<std::string, PhoneCall> calls{{"a", call}};
    GVariant* const variant = g_variant_ref_sink(ToVariant(calls));
    const auto read = FromVariant<std::map<std::string, PhoneCall>>(variant);
    g_variant_unref(variant);
    ASSERT_TRUE(read);
    EXPECT_TRUE(*read == calls);

    const PairingInfo pairing{"00:11", {0, 1, 255}};
    GVariant* const bytes = g_variant_ref_sink(ToVariant(pairing));
    EXPECT_TRUE(FromVariant<PairingInfo>(bytes) == pairing);
    EXPECT_FALSE(FromVariant<int>(bytes));
    g_variant_unref(bytes);
}

TEST(VariantTest, TextIsFitForTheBus)
{
    EXPECT_EQ(BusText("Été 🦊"), "Été 🦊");
    EXPECT_EQ(BusText(std::string("a\0b\x1b[31m\n", 9)), "a\uFFFDb\uFFFD[31m\uFFFD");
    EXPECT_EQ(BusText("cut \xE5\x91"), "cut \uFFFD\uFFFD");
    EXPECT_EQ(BusText("\xED\xA0\x80 \xC2\x85"), "\uFFFD\uFFFD\uFFFD \uFFFD");
}
}  // namespace
}  // namespace test
