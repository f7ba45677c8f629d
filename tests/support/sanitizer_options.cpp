// Called only by the sanitizers at program start.
extern "C"
{
    const char* __asan_default_options();
    const char* __lsan_default_options();
    const char* __tsan_default_options();
}

// Suppressions by function name need stacks that unwind through GLib, which lacks frame pointers.
extern "C" const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0:detect_odr_violation=" DETECT_ODR_VIOLATION;
}

extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0:suppressions=" LSAN_SUPPRESSIONS;
}

// GLib is not built for the thread sanitizer, which would report its synchronization as races.
extern "C" const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}
