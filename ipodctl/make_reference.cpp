// Generates the reference of ipodctl: make-reference markdown|man PAGE >OUTPUT
#include <cli/reference.h>

#include "verbs/verbs.h"

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    CLI::App app;
    ctl::Options options;
    ctl::BuildProgram(app, options);
    const cli::Tables tables{{"@exit-codes", ctl::ExitCodes()}, {"@environment", ctl::EnvironmentVariables()}};
    return cli::MakeReference(app, tables, argv[1], argv[2]);
}
