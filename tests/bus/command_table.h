/// @file
/// The synchronous commands as data: what each one sends, returns and logs.
#pragma once

#include <IQBXIpodPlayer.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace test
{
/// In place of a failure value: what comes back after a failed call means nothing.
constexpr const char* kUnset = nullptr;

/// A line at level 40 with the command as function.
struct CommandLine
{
    std::string text;
    std::string format;
};

struct Command
{
    const char* name;                                  ///< of the method, and the function of its log records
    std::function<std::string(IQBXIpodPlayer&)> call;  ///< calls it; result and out-arguments as text
    const char* member;                                ///< of the bus contract
    std::string sent;                                  ///< arguments as the service sees them
    std::string reply;                                 ///< what the service answers
    const char* success;                               ///< then the call yields this
    const char* notReady;                              ///< without a client
    const char* failure;                               ///< after a failed call, or kUnset
    const char* generated;                             ///< function that makes the call, named by the failure line
    std::vector<CommandLine> first = {};               ///< written whether there is a client or not
    std::vector<CommandLine> beforeCall = {};          ///< written when there is one
    std::vector<CommandLine> afterCall = {};           ///< written after the call, before its failure line
};

/// Every command but Play() and CarPlayConnectStatusNotify().
const std::vector<Command>& Commands();

/// The records of a call, oldest first, as "40 FUNCTION: TEXT"; with @p failure when it is not empty.
std::vector<std::string> ExpectedLines(const Command& command, const std::string& failure);

/// The same with the formats.
std::vector<std::string> ExpectedFormats(const Command& command, bool failed);

/// The records of a call when there is no client.
std::vector<std::string> ExpectedLinesNotReady(const Command& command);

/// Names a row in the name of a test.
std::ostream& operator<<(std::ostream& out, const Command& command);
}  // namespace test
