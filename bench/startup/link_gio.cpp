// Links GIO and the C++ library, and does nothing: the baseline of start-up.
#include <gio/gio.h>

#include <exception>

int main()
{
    const auto volatile linked = &g_bus_get_sync;
    const auto volatile language = &std::terminate;
    return linked == nullptr || language == nullptr;
}
