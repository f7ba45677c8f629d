/// @file
/// Scripted replies. Simulator::On() overrides single methods of the simulator; a ScriptedService does only what the
/// test scripts:
///
///     ipodsim::ScriptedService service;
///     service.Answer("GetPlayStatus", "(1,)");
///     service.On("Play", [](GVariant*) { return ipodsim::Reply::Malformed("('text',)").After(500); });
///     … the client calls …
///     service.Calls();  // {"GetPlayStatus()", "Play(0x03,)"}
///     service.Emit("OnPlayStatusChanged", "(2,)");
///
/// Bodies are in GVariant text format, with the types of the bus contract unless stated otherwise.
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

namespace ipodsim
{
/// The reply to one call.
struct Reply
{
    /// A body such as "(true,)".
    static Reply With(std::string body);
    /// A body of any type, even one that violates the contract, such as "('text', 1)".
    static Reply Malformed(std::string body);
    static Reply Error(std::string name, std::string message);
    /// No reply: the caller times out.
    static Reply Never();

    /// The same reply, delayed. Other calls are answered meanwhile.
    Reply After(unsigned milliseconds) const;

    std::string body;   ///< or the error's message
    std::string error;  ///< error name; empty for a body
    bool malformed = false;
    bool never = false;
    unsigned delayMs = 0;
};

/// Answers a call, on the service's thread. The arguments are a borrowed tuple. An exception becomes an error reply.
using Handler = std::function<Reply(GVariant* arguments)>;

/// A service with its own thread and bus connection, but without music, state, or shared memory. Methods without a
/// scripted reply fail. All members may be called from any thread.
class ScriptedService
{
public:
    /// Handles a call on the service's thread and takes ownership of the invocation.
    using Reaction = std::function<void(GDBusMethodInvocation*)>;

    enum class Takeover
    {
        No,
        Yes,  ///< acquires the name from its current owner, which stays connected
    };

    /// Connects to the session bus of the environment, exports the object, and acquires the name. The process ends if
    /// that fails.
    explicit ScriptedService(Takeover takeover = Takeover::No);
    ~ScriptedService();
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;

    void On(const std::string& method, Handler handler);

    /// Answers with a body such as "(true,)".
    void Answer(const std::string& method, const std::string& body);

    /// Answers with the error com.example.Broken.
    void Fail(const std::string& method, const std::string& message);

    /// Answers with a body whose type violates the contract, such as "('text', 1)".
    void AnswerInvalid(const std::string& method, const std::string& body);

    /// Leaves calls unanswered until AnswerHeld().
    void Hold(const std::string& method);

    /// Answers all held calls.
    void AnswerHeld(const std::string& body);

    /// For what On() cannot express, such as work after the reply.
    void React(const std::string& method, Reaction reaction);

    /// Sends the reply to one call, from within a Reaction.
    static void Respond(GDBusMethodInvocation* invocation, const Reply& reply);

    /// Returns all calls so far, for example "Seek(12,)": the method and its arguments in GVariant text format.
    std::vector<std::string> Calls() const;

    /// Stops recording calls, for services that run for hours.
    void KeepNoCalls();

    /// Returns the arguments of the last call; release with g_variant_unref().
    GVariant* LastArguments() const;

    /// Waits until @p count calls have arrived; returns false after 20 seconds.
    bool WaitForCalls(std::size_t count) const;

    /// Sends a signal with a body such as "(1,)".
    void Emit(const std::string& signal, const std::string& body);

    /// Sends a signal with any body, even one that violates the contract. Consumes a floating reference.
    void EmitBody(const std::string& signal, GVariant* body);

    /// Blocks until everything sent has left the process.
    void Flush();

    /// Releases the name but stays connected.
    void ReleaseName();

    /// Leaves the bus, as if its process had died. Held calls never get an answer.
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
    std::atomic<bool> m_vanishing{false};  // g_main_loop_quit() has no effect before the loop runs
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
}  // namespace ipodsim
