/// @file
/// A service under the test's control, on a thread and a bus connection of its own.
///
///     test::PrivateBus bus;
///     test::FakeService service;
///     service.Answer("GetPlayStatus", "(1,)");
///     … the client asks …
///     EXPECT_THAT(service.Calls(), ElementsAre("GetPlayStatus()"));
///     service.Emit("OnPlayStatusChanged", "(2,)");
///
/// Bodies are GVariant text in the types of the bus contract. A method that was not told what to answer fails.
#pragma once

#include <gio/gio.h>
#include <atomic>

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test
{
class FakeService
{
public:
    /// What to do with a call. Runs on the service's thread and takes the invocation over.
    using Reaction = std::function<void(GDBusMethodInvocation*)>;

    enum class Takeover
    {
        No,
        Yes,  ///< takes the name away from the service that owns it, which stays connected
    };

    /// Connects to the session bus of the environment, exports the object and owns the name.
    explicit FakeService(Takeover takeover = Takeover::No);
    ~FakeService();
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;

    /// Answers with a body such as "(true,)".
    void Answer(const std::string& method, const std::string& body);

    /// Answers with an error.
    void Fail(const std::string& method, const std::string& message);

    /// Answers with a body whose type the contract does not allow, such as "('text', 1)".
    void AnswerInvalid(const std::string& method, const std::string& body);

    /// Leaves calls unanswered until AnswerHeld().
    void Hold(const std::string& method);

    /// Answers the calls that were held back.
    void AnswerHeld(const std::string& body);

    void React(const std::string& method, Reaction reaction);

    /// Answers one call with a body of any type; for reactions.
    static void ReplyInvalid(GDBusMethodInvocation* invocation, const std::string& body);

    /// "Seek(12,)" for each call so far: the method and its arguments as GVariant text.
    std::vector<std::string> Calls() const;

    /// Writes calls down no longer: for services that serve for hours.
    void KeepNoCalls();

    /// The arguments of the last call; release with g_variant_unref().
    GVariant* LastArguments() const;

    /// False when no call came within a few seconds.
    bool WaitForCalls(std::size_t count) const;

    /// Sends a signal with a body such as "(1,)".
    void Emit(const std::string& signal, const std::string& body);

    /// Sends a signal with any body, also one that the contract does not allow. Takes a floating reference.
    void EmitBody(const std::string& signal, GVariant* body);

    /// Waits until everything that was sent has left the process.
    void Flush();

    /// Gives the name up, but stays connected.
    void ReleaseName();

    /// Is gone from the bus, as if its process had died. Held calls never get an answer.
    void Vanish();

    std::string UniqueName() const;

private:
    static void OnMethodCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                             GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self);
    void Run();
    void Connect();
    void CallBus(const char* method, GVariant* arguments);
    void Record(const gchar* method, GVariant* arguments);
    Reaction ReactionTo(const std::string& method) const;

    const guint m_nameFlags;
    GMainContext* m_context;
    std::atomic<bool> m_keepingCalls{true};
    std::atomic<bool> m_vanishing{false};  // a loop would forget that it was told to quit before it ran
    GDBusConnection* m_connection = nullptr;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    bool m_ready = false;
    std::map<std::string, Reaction> m_reactions;
    std::vector<GDBusMethodInvocation*> m_held;
    std::vector<std::string> m_calls;
    GVariant* m_lastArguments = nullptr;
    std::thread m_thread;
};
}  // namespace test
