/// @file
/// The program ipodctl.
#pragma once

namespace ctl
{
/// Runs the command in the arguments and returns the exit code.
int Main(int argc, char** argv);
}  // namespace ctl
