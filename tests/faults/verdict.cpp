#include <atomic>
#include <cstdio>

#include "case.h"

namespace faults
{
namespace
{
std::atomic<int> notAsDocumented{0};
}  // namespace

void Say(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void Expect(bool holds, const std::string& what)
{
    if (holds) return;
    ++notAsDocumented;
    Say("NOT AS DOCUMENTED: " + what);
}

void ExpectText(const std::string& what, const std::string& actual, const std::string& expected)
{
    Expect(actual == expected, what + ": got " + actual.substr(0, 400) + ", expected " + expected.substr(0, 400));
}

void Figure(const char* name, double value)
{
    char line[120];
    std::snprintf(line, sizeof(line), "figure %s %.6g", name, value);
    Say(line);
}

int Verdict()
{
    return notAsDocumented == 0 ? 0 : 1;
}
}  // namespace faults
