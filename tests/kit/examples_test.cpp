// The examples as a user runs them: each as a separate process, against the tests' service.
#include <gio/gio.h>

#include <glib/gstdio.h>

#include "kit/kit_test.h"

namespace test
{
namespace
{
// Runs a process, collects its output, and terminates it on destruction.
class Example
{
public:
    Example(const std::string& name, const std::string& argument)
    {
        const std::string path = std::string(IPODKIT_EXAMPLES) + "/" + name;
        const gchar* const command[] = {path.c_str(), argument.empty() ? nullptr : argument.c_str(), nullptr};
        m_process = g_subprocess_newv(command, G_SUBPROCESS_FLAGS_STDOUT_PIPE, nullptr);
        m_output = G_POLLABLE_INPUT_STREAM(g_subprocess_get_stdout_pipe(m_process));
    }
    ~Example()
    {
        EXPECT_THAT(m_printed, testing::Not(HasSubstr("Log system not init")));
        g_subprocess_force_exit(m_process);
        g_subprocess_wait(m_process, nullptr, nullptr);
        g_object_unref(m_process);
    }
    Example(const Example&) = delete;
    Example& operator=(const Example&) = delete;

    bool Prints(const std::string& text)
    {
        return RunLoopUntil(
            [&]
            {
                char bytes[256];
                const gssize count =
                    g_pollable_input_stream_read_nonblocking(m_output, bytes, sizeof(bytes), nullptr, nullptr);
                if (count > 0) m_printed.append(bytes, static_cast<std::size_t>(count));
                return m_printed.find(text) != std::string::npos;
            });
    }

    const std::string& Printed() const { return m_printed; }

private:
    GSubprocess* m_process;
    GPollableInputStream* m_output;
    std::string m_printed;
};

class ExamplesTest : public testing::Test
{
protected:
    PrivateBus bus;
    AnsweringService service;
    SharedVectors shared;
};

TEST_F(ExamplesTest, NowPlayingShowsAndFollowsTheTrack)
{
    Example example("now_playing", "");
    ASSERT_TRUE(example.Prints("[Ready] >  - Song")) << example.Printed();

    service.Emit("OnIpodPlayingTrackChange", TrackEvent(2, "Other"));

    EXPECT_TRUE(example.Prints("Other")) << example.Printed();
}

TEST_F(ExamplesTest, NowPlayingOnTheCoreDoesTheSame)
{
    Example example("now_playing_core", "");
    ASSERT_TRUE(example.Prints(">  - Song")) << example.Printed();

    service.Emit("OnIpodPlayingTrackChange", TrackEvent(2, "Other"));

    EXPECT_TRUE(example.Prints("Other")) << example.Printed();
}

TEST_F(ExamplesTest, BrowseAndJumpFindsAName)
{
    shared.SetList("VecDBListShareMemory", {"林若溪", "周明轩"});
    service.Answer("GetCurDbListItemsAmount", "(2,)");
    service.Answer("GetCurDbListItems", "(true, true, true)");

    Example example("browse_and_jump", "zmx");

    EXPECT_TRUE(example.Prints("1\t周明轩\t(zhou ming xuan)")) << example.Printed();
}

TEST_F(ExamplesTest, ArtworkToFileWritesAFile)
{
    shared.SetBytes("VecArtworkBufferShareMemory", {'G', 'I', 'F', '8', '9', 'a', 5, 0, 6, 0});
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    char directory[] = "/tmp/ipodkit-example-XXXXXX";
    ASSERT_NE(mkdtemp(directory), nullptr);

    Example example("artwork_to_file", directory);

    EXPECT_TRUE(example.Prints(std::string("image/gif 5x6 file://") + directory)) << example.Printed();
    EXPECT_TRUE(example.Prints(".gif\n"));
    const std::string path = example.Printed().substr(example.Printed().find("file://") + 7);
    EXPECT_EQ(g_remove(path.substr(0, path.find('\n')).c_str()), 0);
    EXPECT_EQ(g_rmdir(directory), 0);
}

class AccessoryEchoTest : public ExamplesTest
{
protected:
    AccessoryEchoTest() { service.Answer("EapInit", "()"); }

    // Two bytes in a separate session.
    void SendBytes(Example& example)
    {
        ASSERT_TRUE(RunLoopUntil([&] { return service.WaitForCalls(14); }));
        service.Emit("OnIpodStartEapSession", "(0, 300)");
        ASSERT_TRUE(example.Prints("session 300 opened"));
        shared.SetBytes("VecEapReadBufferShareMemory", {'h', 'i'});
        service.Emit("OnIpodReceiveEapData", "(44,)");
    }
};

TEST_F(AccessoryEchoTest, EchoesReceivedData)
{
    service.Answer("EapWrite", "(true,)");
    Example example("accessory_echo", "");

    SendBytes(example);

    EXPECT_TRUE(RunLoopUntil([&] { return service.Calls().back() == "EapWrite(300,)"; }));
    EXPECT_EQ(shared.Bytes("VecEapWriteBufferShareMemory"), (std::vector<unsigned char>{'h', 'i'}));
}

TEST_F(AccessoryEchoTest, DoesNotAnswerAnotherEcho)
{
    service.React("EapWrite",
                  [this](GDBusMethodInvocation* call)
                  {
                      g_dbus_method_invocation_return_value(call, g_variant_new("(b)", TRUE));
                      shared.SetBytes("VecEapReadBufferShareMemory", shared.Bytes("VecEapWriteBufferShareMemory"));
                      service.Emit("OnIpodReceiveEapData", "(44,)");
                  });
    Example example("accessory_echo", "");

    SendBytes(example);

    EXPECT_TRUE(RunLoopUntil([&] { return service.Calls().back() == "EapWrite(300,)"; }));
    RunLoopFor(std::chrono::milliseconds(300));
    const std::vector<std::string> calls = service.Calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "EapWrite(300,)"), 1);
}
}  // namespace
}  // namespace test
