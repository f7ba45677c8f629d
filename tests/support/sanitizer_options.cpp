// Read by the sanitizers when the program starts; never called otherwise.
extern "C"
{
    const char* __asan_default_options();
    const char* __lsan_default_options();
}

// The log category is defined twice on purpose: the test program's takes the place of the middleware's. Stacks of
// leaks must reach through GLib, which has no frame pointers, so that suppressions by function name work.
extern "C" const char* __asan_default_options()
{
    return "detect_odr_violation=0:fast_unwind_on_malloc=0";
}

extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0:suppressions=" LSAN_SUPPRESSIONS;
}
