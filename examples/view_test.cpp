// A test of an application's view: without a bus, a service, or shared memory.
#include <ipodkit/testing.h>

#include <iostream>

using namespace ipodkit;

namespace
{
// The view under test.
class NowPlaying
{
public:
    explicit NowPlaying(Session& session) : m_commands(session.Commands())
    {
        const auto show = [this](const StatePtr& state, Fields) { title = state->track ? state->track->title : "-"; };
        m_shown = session.OnState("title", show, Field::Track);
    }

    void ClickNext()
    {
        m_commands.Next().Start([this](const Result<void>& done) { problem = done ? "" : done.error().Text(); });
    }

    std::string title, problem;

private:
    Commands m_commands;
    Subscription m_shown;
};

bool Passes()
{
    FakeSession fake;
    NowPlaying view(fake.Get());
    fake.SetState(FakeSession::ReadyState());
    fake.Emit(TrackChanged{0, Track{"Low Water", "Harbour Quartet"}});
    const bool shows = view.title == "Low Water";

    fake.Fail("Next", {ErrorKind::ServiceLost, "the service exited"});
    view.ClickNext();
    fake.Run();
    return shows && view.problem == "ServiceLost: the service exited" && fake.Calls().back() == "Next()";
}
}  // namespace

int main()
{
    const bool passed = Passes();
    std::cout << (passed ? "passed" : "failed") << std::endl;
    return passed ? EXIT_SUCCESS : EXIT_FAILURE;
}
