#include "faults/faults.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "faults/fault_table.h"

using ipodsim::Fault;
using ipodsim::FaultKind;
using ipodsim::Faults;
using ipodsim::ParseFault;

namespace
{
std::string ErrorFor(const std::string& fault)
{
    try
    {
        ParseFault(fault);
        return "none";
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
}
}  // namespace

TEST(FaultText, ParsesKindParameterMemberAndCount)
{
    const Fault fault = ParseFault("delay=500@GetPlayStatus/3");

    EXPECT_EQ(fault.kind, FaultKind::Delay);
    EXPECT_EQ(fault.parameter, "500");
    EXPECT_EQ(fault.member, "GetPlayStatus");
    EXPECT_EQ(fault.count, 3U);
}

TEST(FaultText, RequiresOnlyTheKind)
{
    const Fault fault = ParseFault("no-reply");

    EXPECT_EQ(fault.kind, FaultKind::NoReply);
    EXPECT_EQ(fault.member, "");
    EXPECT_EQ(fault.count, 0U);
}

TEST(FaultText, ReportsTheExpectation)
{
    EXPECT_NE(ErrorFor("dely").find("expected one of delay, no-reply"), std::string::npos);
    EXPECT_EQ(ErrorFor("delay=soon"), "delay: expected an integer between 0 and 4294967295, got 'soon'");
    EXPECT_EQ(ErrorFor("long-record=1048576"), "none");
    EXPECT_EQ(ErrorFor("long-record=1048577"), "long-record: expected an integer between 0 and 1048576, got '1048577'");
    EXPECT_EQ(ErrorFor("delay@GetPlayState"),
              "the interface has no method or signal 'GetPlayState' (did you mean 'GetPlayStatus'?)");
    EXPECT_NE(ErrorFor("dely").find("(did you mean 'delay'?)"), std::string::npos);
    EXPECT_NE(ErrorFor("delay/x").find("expected KIND"), std::string::npos);
    EXPECT_NE(ErrorFor("delay/").find("expected KIND"), std::string::npos);
    for (const char* incomplete : {"delay/0", "delay=", "delay=@Play", "delay@", "delay@/1", "=", "@"})
        EXPECT_EQ(ErrorFor(incomplete),
                  std::string("expected KIND[=PARAMETER][@MEMBER][/COUNT], got '") + incomplete + "'");
    EXPECT_NE(ErrorFor("no-reply=5").find("expected no parameter"), std::string::npos);
    EXPECT_NE(ErrorFor("error=busy").find("expected an error name"), std::string::npos);
    EXPECT_NE(ErrorFor("error=com.2nd.Busy").find("expected an error name"), std::string::npos);
    EXPECT_NE(ErrorFor("crash-locked=all").find("expected lists or buffers"), std::string::npos);
    EXPECT_NE(ErrorFor("").find("expected one of"), std::string::npos);
}

TEST(FaultText, RejectsMembersThatTheKindDoesNotFit)
{
    EXPECT_EQ(ErrorFor("unterminated@Play"),
              "unterminated: expected one of GetPlayingListItems, GetCurDbListItems, GetCurDbListItemsPinyin, "
              "GetUpdateListItems, GetUpdateListItemsPinyin, GetDeviceList, got 'Play'");
    EXPECT_EQ(ErrorFor("bad-message@Play"),
              "bad-message: expected one of OnIpodPhoneCallChange, OnIpodBatteryChange, got 'Play'");
    EXPECT_NE(ErrorFor("short-record@Play").find("GetCurrentMediaInfo"), std::string::npos);
    EXPECT_NE(ErrorFor("delay@OnPlayStatusChanged").find("expected one of"), std::string::npos);
    EXPECT_EQ(ErrorFor("out-of-range@OnPlayStatusChanged"), "none");
}

TEST(Faults, ApplyAsOftenAsRequested)
{
    Faults faults;
    faults.Add(ParseFault("delay@Play/2"));

    EXPECT_TRUE(faults.Take("Play"));
    EXPECT_FALSE(faults.Take("Pause"));
    EXPECT_TRUE(faults.Take("Play"));
    EXPECT_FALSE(faults.Take("Play"));
}

TEST(Faults, ApplyUntilCleared)
{
    Faults faults;
    faults.Add(ParseFault("error@Play"));
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(faults.Take("Play"));

    faults.Clear();

    EXPECT_FALSE(faults.Take("Play"));
}

TEST(Faults, ApplyInTheOrderOfArming)
{
    Faults faults;
    faults.Add(ParseFault("error@Play/1"));
    faults.Add(ParseFault("no-reply@Play/1"));

    EXPECT_EQ(faults.Take("Play")->kind, FaultKind::Error);
    EXPECT_EQ(faults.Take("Play")->kind, FaultKind::NoReply);
}

TEST(Faults, ApplyToMethodsAndContentsWithoutAMember)
{
    Faults faults;
    faults.Add(ParseFault("no-reply"));
    EXPECT_TRUE(faults.Take("Play"));
    EXPECT_FALSE(faults.Take("OnPlayStatusChanged"));
    faults.Clear();

    faults.Add(ParseFault("short-record"));
    EXPECT_TRUE(faults.Take("GetCurrentMediaInfo"));
    EXPECT_TRUE(faults.Take("OnIpodPlayingTrackChange"));
    EXPECT_FALSE(faults.Take("Play"));
}
