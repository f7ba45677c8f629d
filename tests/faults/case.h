/// @file
/// Code shared by the cases of the fault matrix. A case is one process: it injects a fault, prints deviations from the
/// documented behavior, and finally makes one more call to show that the library still works.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace faults
{
using Arguments = std::vector<std::string>;

struct Case
{
    const char* name;
    std::function<void(const Arguments&)> run;
};

std::vector<Case> DecodingCases();     ///< messages of unusual size
std::vector<Case> SegmentCases();      ///< invalid objects with the segments' names, and corrupted segments
std::vector<Case> ServiceCases();      ///< a service or a bus that dies or hangs
std::vector<Case> RateCases();         ///< excessive rates of calls and events
std::vector<Case> ApplicationCases();  ///< faults in the application itself
std::vector<Case> MemoryCases();       ///< memory leaked by calls
std::vector<Case> Helpers();           ///< the peer processes

/// Unless @p holds, prints @p what and makes the case fail at its end.
void Expect(bool holds, const std::string& what);

/// The same for two values as text.
void ExpectText(const std::string& what, const std::string& actual, const std::string& expected);

/// Reports a measured value.
void Figure(const char* name, double value);

/// Prints one line on standard output and flushes it.
void Say(const std::string& line);

/// The exit code: 0 if all behavior was as documented.
int Verdict();
}  // namespace faults
