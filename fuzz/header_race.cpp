// Reads a vector's header while another process rewrites it: header-race READS. All elements read must be inside the
// mapping.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "internal/shared_bulk.h"

namespace
{
constexpr std::size_t kRoom = 65536;

[[noreturn]] void Rewrite(volatile std::size_t* header)
{
    for (std::size_t number = 88172645463325252ULL;;)
    {
        number ^= number << 13;
        number ^= number >> 7;
        number ^= number << 17;
        header[1] = number % 4 == 0 ? number : number % (2 * kRoom);
        header[2] = number % 8 == 1 ? number : number % (kRoom / 128);
    }
}

// Returns the number of names inside the mapping, over all reads; a read outside terminates the process, or is counted
// in @p outside.
long Read(const char* memory, long reads, long& outside)
{
    const qbx::Mapping mapping{memory, memory + kRoom};
    const auto* const vector = reinterpret_cast<const QBXStringPageVector*>(memory);
    long names = 0;
    for (long i = 0; i < reads; ++i)
    {
        const auto snapshot = qbx::TakeSnapshot(vector, mapping);
        if (snapshot.count == 0) continue;
        const char* const begin = snapshot.begin->name;
        const char* const last = snapshot.begin[snapshot.count - 1].name + 255;
        if (begin < mapping.begin || last >= mapping.end) ++outside;
        names += static_cast<long>(snapshot.count);
    }
    return names;
}
}  // namespace

int main(int argc, char** argv)
{
    const long reads = argc > 1 ? std::atol(argv[1]) : 1000000;
    void* const memory = mmap(nullptr, kRoom, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    const pid_t writer = fork();
    if (writer == 0) Rewrite(static_cast<std::size_t*>(memory));
    long outside = 0;
    const long names = Read(static_cast<const char*>(memory), reads, outside);
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    std::printf("%ld reads of a header that another process rewrites, %ld names seen, %ld outside\n", reads, names,
                outside);
    return outside == 0 && names > 0 ? 0 : 1;
}
