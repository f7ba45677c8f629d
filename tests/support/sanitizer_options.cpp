// Read by the sanitizers when the program starts; never called otherwise.
extern "C"
{
    const char* __asan_default_options();
    const char* __lsan_default_options();
    const char* __tsan_default_options();
}

// Stacks of leaks must reach through GLib, which has no frame pointers, so that suppressions by function name work.
extern "C" const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0:detect_odr_violation=" DETECT_ODR_VIOLATION;
}

extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0:suppressions=" LSAN_SUPPRESSIONS;
}

// GLib is not built for the thread sanitizer, which would take each of its handovers for a race.
extern "C" const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}
