/// @file
/// What the cases of the fault matrix share. A case is one process: it does something bad to the library, prints what
/// was not as documented, and at its end makes one more call to show that the library still answers.
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

std::vector<Case> DecodingCases();     ///< records, messages and types that the contract does not allow
std::vector<Case> SegmentCases();      ///< objects under the segments' names, and what others write into segments
std::vector<Case> ServiceCases();      ///< a service or a bus that dies, hangs or lies
std::vector<Case> RateCases();         ///< more calls and events than anybody needs
std::vector<Case> ApplicationCases();  ///< what applications do to themselves
std::vector<Case> MemoryCases();       ///< what calls leave behind
std::vector<Case> Helpers();           ///< the processes at the other end

/// Ends the case in failure at its end, and says why, unless @p holds.
void Expect(bool holds, const std::string& what);

/// The same for two values as text.
void ExpectText(const std::string& what, const std::string& actual, const std::string& expected);

/// A measured value, for the report.
void Figure(const char* name, double value);

/// One line on standard output, at once.
void Say(const std::string& line);

/// 0 when everything was as documented.
int Verdict();
}  // namespace faults
