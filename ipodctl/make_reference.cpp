// Generates the reference of ipodctl: make-reference markdown|man PAGE >OUTPUT
#include <cli/reference.h>

#include "verbs/command_line.h"

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    const cli::Tables tables{{"@exit-codes", ctl::ExitCodes()}, {"@environment", ctl::EnvironmentVariables()}};
    return cli::MakeReference(ctl::CompleteCommandLine(), tables, argv[1], argv[2]);
}
