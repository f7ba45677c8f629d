/// @file
/// The synchronous commands as data: what each one sends, returns, and logs.
#pragma once

#include <IQBXIpodPlayer.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace test
{
/// Replaces a failure value: the result of a failed call is meaningless. Replaces a value without a client: the command
/// calls the service even then.
constexpr const char* kUnset = nullptr;

/// A line at level 40 with the command as its function.
struct CommandLine
{
    std::string text;
    std::string format;
};

struct Command
{
    const char* name;                                  ///< function of its log records
    std::function<std::string(IQBXIpodPlayer&)> call;  ///< calls it; result and out-arguments as text
    std::string sent;                                  ///< arguments as the service receives them
    std::string reply;                                 ///< the service's reply
    const char* success;                               ///< result of a successful call
    const char* notReady;                              ///< result without a client, or kUnset
    const char* failure;                               ///< result of a failed call, or kUnset
    std::string member = name;                         ///< the method in the bus contract
    std::vector<CommandLine> first = {};               ///< written with or without a client
    std::vector<CommandLine> beforeCall = {};          ///< written only with a client
    std::vector<CommandLine> afterCall = {};           ///< written after the call, before its failure line
};

/// Every command but Play() and CarPlayConnectStatusNotify().
const std::vector<Command>& Commands();

/// The records of a call, oldest first, as "40 FUNCTION: TEXT"; includes @p failure unless it is empty.
std::vector<std::string> ExpectedLines(const Command& command, const std::string& failure);

/// The same with formats instead of texts.
std::vector<std::string> ExpectedFormats(const Command& command, bool failed);

/// The records of a call without a client.
std::vector<std::string> ExpectedLinesNotReady(const Command& command);

/// Name of a row for parameterized test names.
std::ostream& operator<<(std::ostream& out, const Command& command);
}  // namespace test
