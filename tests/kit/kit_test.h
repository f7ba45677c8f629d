/// @file
/// The fixtures of this folder.
#pragma once

#include <gmock/gmock.h>
#include <ipodkit/session.h>

#include <string>
#include <vector>

#include "support/fake_service.h"
#include "support/log_capture.h"
#include "support/private_bus.h"
#include "support/run_loop.h"
#include "support/shared_vectors.h"
#include "support/signal_barrier.h"

namespace test
{
using namespace std::chrono_literals;
using namespace ipodkit;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Returns a body "(<[bytes]>,)" or, with a leading index, "(index, <[bytes]>)".
std::string Record(const std::vector<unsigned char>& bytes);
std::string TrackBody(const std::string& title, int milliseconds = 0);
std::string TrackEvent(int index, const std::string& title, int milliseconds = 0);
std::string PictureBody(unsigned char noPicture = 0);

/// Lets the service answer every getter of the state: "Song", 1 of 3, playing at 1 of 60 seconds, ….
void AnswerState(FakeService& service);

/// Holds these requests, which a session makes before it is Ready. Returns how many they are.
std::size_t HoldState(FakeService& service);

class AnsweringService : public FakeService
{
public:
    explicit AnsweringService(Takeover takeover = Takeover::No) : FakeService(takeover) { AnswerState(*this); }
};

/// The first and the last index of a list request.
std::pair<int, int> RangeOf(GVariant* arguments);

/// A bus, and a session on the default context.
class KitTest : public testing::Test
{
protected:
    /// Opens the session; an error fails the test.
    Session& Open(const SessionOptions& options = {});

    /// Opens the session if needed, and runs the loop until it is ready for the given generation.
    Session& Ready(std::uint32_t generation = 1);

    /// Runs the loop until everything that @p service has sent is delivered and settled.
    void Settle(FakeService& service);

    PrivateBus bus;
    SessionOptions options;
    std::unique_ptr<Session> session;
};

/// As KitTest, with a service that answers every getter of the state.
class ServedTest : public KitTest
{
protected:
    StatePtr State() const { return session->State(); }
    Commands Ask() const { return session->Commands(); }

    /// Sends a signal and settles.
    void Emit(const std::string& signal, const std::string& body);

    /// Returns how many times the service received this call, such as "Next()".
    std::ptrdiff_t Calls(const std::string& call) const;

    SharedVectors shared;
    AnsweringService service;  // must be the last member, because its thread uses the others
};

/// As ServedTest, with a session that is ready.
class ReadyTest : public ServedTest
{
protected:
    ReadyTest() { Ready(); }
};

/// A started request.
template <class T>
class Pending
{
public:
    explicit Pending(Request<T> request)
    {
        std::move(request).Start([result = m_result](Result<T> done) { *result = std::move(done); });
    }

    bool Done() const { return m_result->has_value(); }

    /// Runs the loop until the request completes.
    Result<T> Get(std::chrono::milliseconds limit = 20s) const
    {
        EXPECT_TRUE(RunLoopUntil([this] { return Done(); }, limit));
        return m_result->value_or(tl::unexpected<Error>(Error{ErrorKind::TimedOut, "the request never completed"}));
    }

private:
    std::shared_ptr<std::optional<Result<T>>> m_result = std::make_shared<std::optional<Result<T>>>();
};

/// Starts a request and runs the loop until it completes.
template <class T>
Result<T> Completed(Request<T> request)
{
    const Pending<T> pending(std::move(request));
    EXPECT_FALSE(pending.Done()) << "completed inside Start()";
    return pending.Get();
}

template <class T>
ErrorKind KindOf(const Result<T>& result)
{
    EXPECT_FALSE(result);
    return result ? ErrorKind{} : result.error().kind;
}
}  // namespace test

namespace ipodkit
{
inline void PrintTo(ErrorKind kind, std::ostream* out)
{
    *out << Name(kind);
}
inline void PrintTo(Phase phase, std::ostream* out)
{
    *out << Name(phase);
}
}  // namespace ipodkit
