#include "bus/replaced_release.h"

#include <dlfcn.h>

namespace
{
// Does what GLib itself does.
template <class Pointer>
void Forward(const char* function, Pointer memory)
{
    reinterpret_cast<void (*)(Pointer)>(dlsym(RTLD_NEXT, function))(memory);
}
}  // namespace

namespace test
{
std::atomic<int> errorsReleased{0};
std::atomic<gpointer> unreleased{nullptr};
}  // namespace test

void g_error_free(GError* error)
{
    ++test::errorsReleased;
    Forward("g_error_free", error);
}

void g_free(gpointer memory)
{
    gpointer expected = memory;
    test::unreleased.compare_exchange_strong(expected, nullptr);
    Forward("g_free", memory);
}
