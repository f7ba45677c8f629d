// Generates the manual page of ipod-companiond: make-manual PAGE >OUTPUT
#include <cli/reference.h>

#include "command_line.h"

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    CLI::App app;
    bool printInterface = false;
    companion::AddOptions(app, printInterface);
    return cli::MakeReference(app, {{"@exit-codes", companion::ExitCodes()}}, "man", argv[1]);
}
