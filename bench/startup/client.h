/// @file
/// Shared by the clients of the start-up suite, which report that they are ready and then run until told to exit.
#pragma once

#include <gio/gio.h>

#include <cstdio>
#include <cstring>
#include <functional>

namespace bench
{
inline int LiveAfter(int argc, char** argv, const std::function<bool()>& ready)
{
    while (!ready()) g_main_context_iteration(nullptr, TRUE);
    std::puts("ready");
    std::fflush(stdout);
    const bool stays = argc > 1 && std::strcmp(argv[1], "stay") == 0;
    while (stays) g_main_context_iteration(nullptr, TRUE);
    return 0;
}
}  // namespace bench
