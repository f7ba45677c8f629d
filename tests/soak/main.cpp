// One process of a run; run-soak starts them all:
//   soak layout | soak application LEDGER 0|1 | soak service LEDGER INCARNATION
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "roles.h"

namespace
{
using namespace soak;

int Run(const std::vector<std::string>& words)
{
    if (words == std::vector<std::string>{"layout"}) return std::puts(LedgerLayout().c_str()) < 0;
    if (words.size() != 3) throw std::invalid_argument("soak layout | soak application|service LEDGER NUMBER");
    Ledger& ledger = OpenLedger(words[1]);
    const unsigned long number = std::stoul(words[2]);
    if (words[0] == "service")
        RunService(ledger, number);
    else
        RunApplication(ledger, number == 0 ? kFirstApplication : kSecondApplication);
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    try
    {
        return Run({argv + 1, argv + argc});
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return 1;
    }
}
