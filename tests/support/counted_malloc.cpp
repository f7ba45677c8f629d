#include "support/counted_malloc.h"

#include <atomic>
#include <cerrno>

// glibc's own functions, under the names that remain when a program replaces the usual ones.
extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_calloc(std::size_t, std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);
extern "C" void* __libc_memalign(std::size_t, std::size_t);
extern "C" void __libc_free(void*);

namespace
{
std::atomic<long> live{0};
std::atomic<long> large{0};
thread_local long made = 0;

void NoteSize(std::size_t size)
{
    if (size >= test::kLargeAllocation) large.fetch_add(1, std::memory_order_relaxed);
}

void* Counted(void* memory, std::size_t size)
{
    NoteSize(size);
    if (memory != nullptr) live.fetch_add(1, std::memory_order_relaxed);
    ++made;
    return memory;
}
}  // namespace

namespace test
{
long LiveAllocations()
{
    return live.load();
}

long AllocationsOfThisThread()
{
    return made;
}

long LargeAllocations()
{
    return large.load();
}
}  // namespace test

extern "C" void* malloc(std::size_t size)
{
    return Counted(__libc_malloc(size), size);
}

extern "C" void* calloc(std::size_t count, std::size_t size)
{
    return Counted(__libc_calloc(count, size), count * size);
}

extern "C" void* realloc(void* memory, std::size_t size)
{
    if (memory == nullptr) return malloc(size);
    if (size == 0) live.fetch_sub(1, std::memory_order_relaxed);
    NoteSize(size);
    return __libc_realloc(memory, size);
}

extern "C" void* memalign(std::size_t alignment, std::size_t size)
{
    return Counted(__libc_memalign(alignment, size), size);
}

extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

extern "C" int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

extern "C" void free(void* memory)
{
    if (memory != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
    __libc_free(memory);
}
