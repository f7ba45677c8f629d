#include "output/failure.h"

#include <gtest/gtest.h>

namespace ctl
{
namespace
{
using ipodkit::ErrorKind;

struct Case
{
    ErrorKind kind;
    ExitCode code;
    const char* part;
    const char* hint = "";
};

class ToFailureGives : public testing::TestWithParam<Case>
{
};

TEST_P(ToFailureGives, AnExitCodeAndAMessage)
{
    const Failure failure = ToFailure({GetParam().kind, "the reason"});
    EXPECT_EQ(failure.code(), GetParam().code);
    const std::string line = failure.what();
    EXPECT_NE(line.find(GetParam().part), std::string::npos) << line;
    EXPECT_NE(line.find("the reason"), std::string::npos) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos) << line;
    EXPECT_NE(failure.hint().find(GetParam().hint), std::string::npos) << failure.hint();
}

INSTANTIATE_TEST_SUITE_P(All, ToFailureGives,
                         testing::Values(Case{ErrorKind::NoBus, kServiceLost, "bus closed"},
                                         Case{ErrorKind::NoService, kServiceLost, "disappeared", "running"},
                                         Case{ErrorKind::ServiceLost, kServiceLost, "disappeared", "running"},
                                         Case{ErrorKind::TimedOut, kServiceLost, "in time", "--deadline"},
                                         Case{ErrorKind::Refused, kNothingDone, "refused"},
                                         Case{ErrorKind::Busy, kNothingDone, "lists are in use: ", "doctor"},
                                         Case{ErrorKind::BadReply, kServiceLost, "invalid answer"},
                                         Case{ErrorKind::Cancelled, kNothingDone, "changed", "try again"},
                                         Case{ErrorKind::NoSharedMemory, kNoSegments, "shared memory", "doctor"},
                                         Case{ErrorKind::BadArgument, kUsage, ""},
                                         Case{ErrorKind::Ambiguous, kNothingDone, ""},
                                         Case{ErrorKind::NoStorage, kUsage, ""}),
                         [](const auto& test) { return "Kind" + std::to_string(static_cast<int>(test.param.kind)); });

TEST(ToFailure, ReportsARefusalInTheWordsOfTheVerb)
{
    EXPECT_STREQ(ToFailure({ErrorKind::Refused, "x"}, "it did not pause").what(), "it did not pause");
    EXPECT_STRNE(ToFailure({ErrorKind::TimedOut, "x"}, "it did not pause").what(), "it did not pause");
}

TEST(ToFailure, SuggestsARemedyOfARefusalInTheHint)
{
    const Failure failure = ToFailure({ErrorKind::Refused, "x"}, {"it did not pause", "check the player"});
    EXPECT_STREQ(failure.what(), "it did not pause");
    EXPECT_EQ(failure.hint(), "check the player");
}

TEST(ToFailure, ReportsAnErrorOfTheServiceByItsName)
{
    const Failure failure = ToFailure({ErrorKind::Refused, "not now", "com.example.Busy"}, "it did not pause");
    EXPECT_EQ(failure.code(), kNothingDone);
    EXPECT_STREQ(failure.what(), "the service refused: GDBus.Error:com.example.Busy: not now");
}
}  // namespace
}  // namespace ctl
