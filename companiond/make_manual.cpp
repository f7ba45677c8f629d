// Generates the manual page of ipod-companiond: make-manual PAGE >OUTPUT
#include <cli/reference.h>

#include "command_line.h"

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    bool printInterface = false;
    const cli::Tables tables{{"@exit-codes", companion::ExitCodes()}};
    return cli::MakeReference(companion::CommandLineOf(printInterface), tables, "man", argv[1]);
}
