// Plays an entry of the playing list, and prints the remedy if that fails: remedies INDEX
#include <QBXLog.h>
#include <ipodkit/session.h>

#include <iostream>

using namespace ipodkit;

namespace
{
int Report(const Result<void>& done)
{
    if (done) return EXIT_SUCCESS;
    std::cerr << "remedies: " << done.error().Text() << '\n';
    const std::string remedy = Remedy(done.error().kind);
    if (!remedy.empty()) std::cerr << "hint: " << remedy << '\n';
    return EXIT_FAILURE;
}
}  // namespace

int main(int argc, char** argv)
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (argc < 2 || !session) return std::cerr << "usage: remedies INDEX\n", EXIT_FAILURE;
    return Report((*session)->Commands().PlayPlayingEntry(std::atoi(argv[1])).Wait());
}
