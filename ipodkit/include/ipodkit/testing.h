/// @file
/// A fake session for tests of applications, without a bus, a service, or shared memory.
///
///     FakeSession fake;
///     NowPlaying view(fake.Get());
///     PlayerState state = FakeSession::ReadyState();
///     state.track = Track{"Low Water", "Harbour Quartet"};
///     fake.SetState(state);
///     EXPECT_EQ(view.title(), "Low Water");
///     view.ClickNext();
///     EXPECT_EQ(fake.Calls(), std::vector<std::string>{"Next()"});
///
/// Everything that an application does with a Session works: state, events, requests, and pagers. Refresh() reads
/// nothing: the state is what the test sets. Each operation of the fake runs the session's context until nothing is
/// ready, so callbacks have run when it returns. One thread only; any number of fakes at a time.
#pragma once

#include <ipodkit/list_kind.h>
#include <ipodkit/session.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// A Session whose state, events, and answers the test provides.
class FakeSession
{
public:
    explicit FakeSession(const SessionOptions& options = {});
    ~FakeSession();
    FakeSession(const FakeSession&) = delete;
    FakeSession& operator=(const FakeSession&) = delete;

    /// Returns the session to pass to the application; it ends with the fake.
    Session& Get();

    /// Returns a state in Phase::Ready in which everything else is unknown.
    static PlayerState ReadyState();

    /// Publishes a state, with the next version.
    void SetState(const PlayerState& state);

    /// Emits an event as the service does: callbacks of OnEvent() run, and the state follows.
    void Emit(const Event& event);

    /// @name Answers to requests, by method of the bus contract. Without an answer, a request completes with
    /// ErrorKind::Refused; void commands succeed.
    /// @{
    /// @param body  in GVariant text: "(true,)"
    /// @throws std::invalid_argument  when it is not
    void Answer(const std::string& method, const std::string& body);
    void Fail(const std::string& method, const Error& error);
    void Hold(const std::string& method);        ///< answers neither these calls nor later ones
    void AnswerHeld(const std::string& method);  ///< answers all of them as before Hold(), and later ones at once

    /// Sets the entries of a list, for pagers.
    void SetList(ListKind kind, std::vector<std::string> names);
    /// @}

    /// Returns the calls so far, in order: method and arguments in GVariant text, "Seek(12,)".
    std::vector<std::string> Calls() const;

    /// Advances the time: the position follows while something plays, and requests reach their deadlines.
    void Advance(std::chrono::milliseconds time);

    /// Runs what is ready in the session's context.
    void Run();

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::unique_ptr<Impl> m_impl;
};
}  // namespace ipodkit

#pragma GCC visibility pop
