/// @file
/// Values of the format language, and its functions.
#pragma once

#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
/// Whether a condition on it holds.
bool IsTrue(const Json& value);

/// As it stands in a line: nothing for an unknown value, printable.
std::string Shown(const Json& value);

/// Numbers by their size, everything else as text.
/// @param comparison  "==", "!=", "<", "<=", ">" or ">="
bool Compare(const Json& one, const std::string& comparison, const Json& other);

struct FormatFunction
{
    const char* name;
    std::size_t arguments;
    Json (*call)(const std::vector<Json>& arguments);
};

/// Null when there is none of that name.
const FormatFunction* FindFormatFunction(const std::string& name);

/// "cut, default, …", for messages.
std::string FormatFunctionNames();
}  // namespace ctl
