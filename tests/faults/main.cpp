// Runs one case: fault-case NAME [ARGUMENT...]. A helper shares the /dev/shm of the case that started it.
#include <csignal>
#include <cstdio>
#include <exception>

#include "case.h"
#include "support/private_shared_memory.h"

namespace
{
using faults::Case;

const Case* Find(const std::vector<Case>& cases, const std::string& name)
{
    for (const Case& row : cases)
        if (name == row.name) return &row;
    return nullptr;
}

int Run(const Case& row, const faults::Arguments& arguments)
{
    try
    {
        row.run(arguments);
    }
    catch (const std::exception& e)
    {
        faults::Expect(false, std::string("an exception left the case: ") + e.what());
    }
    return faults::Verdict();
}

std::vector<Case> AllCases()
{
    std::vector<Case> all;
    for (const auto cases : {faults::DecodingCases, faults::SegmentCases, faults::ServiceCases, faults::RateCases,
                             faults::ApplicationCases, faults::MemoryCases})
        for (const Case& row : cases()) all.push_back(row);
    return all;
}
}  // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    const std::string name = argc > 1 ? argv[1] : "";
    const faults::Arguments arguments(argv + (argc > 1 ? 2 : 1), argv + argc);
    const std::vector<Case> helpers = faults::Helpers();
    if (const Case* const helper = Find(helpers, name)) return Run(*helper, arguments);
    const std::vector<Case> cases = AllCases();
    const Case* const row = Find(cases, name);
    if (row == nullptr)
    {
        std::fprintf(stderr, "fault-case: unknown case '%s'\n", name.c_str());
        return 2;
    }
    const test::PrivateSharedMemory ownSharedMemory;
    return Run(*row, arguments);
}
