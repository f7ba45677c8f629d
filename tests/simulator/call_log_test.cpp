#include "service/call_log.h"

#include <gtest/gtest.h>

#include <string>

using ipodsim::CallLog;
using ipodsim::LoggedCall;

namespace
{
LoggedCall CallWithAnswerOf(std::size_t bytes)
{
    LoggedCall call;
    call.method = "GetCurrentMediaInfo";
    call.arguments = ipodsim::Own(g_variant_new_tuple(nullptr, 0));
    call.answer = ipodsim::Own(g_variant_new("(s)", std::string(bytes, 'x').c_str()));
    return call;
}
}  // namespace

TEST(CallLog, KeepsTheLastTenThousand)
{
    CallLog log;
    for (int i = 0; i < 10001; ++i) log.Add(CallWithAnswerOf(1));

    EXPECT_EQ(log.Calls().size(), 10000U);
}

TEST(CallLog, KeepsNoMoreThanFitsIntoOneBusMessage)
{
    CallLog log;
    for (int i = 0; i < 40; ++i) log.Add(CallWithAnswerOf(std::size_t{1} << 20U));
    EXPECT_EQ(log.Calls().size(), 31U);

    log.Clear();
    for (int i = 0; i < 5; ++i) log.Add(CallWithAnswerOf(std::size_t{1} << 20U));
    EXPECT_EQ(log.Calls().size(), 5U);
}
