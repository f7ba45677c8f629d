// Compares programs from start to exit. Each command is a variant of one contest.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "contest.h"

namespace
{
using Words = std::vector<char*>;

posix_spawn_file_actions_t* Silence()
{
    static posix_spawn_file_actions_t actions;
    static const int prepared = posix_spawn_file_actions_init(&actions) +
                                posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    return prepared == 0 ? &actions : nullptr;
}

void RunToItsEnd(Words words)
{
    words.push_back(nullptr);
    pid_t child = -1;
    int status = 0;
    if (posix_spawnp(&child, words[0], Silence(), nullptr, words.data(), environ) == 0 &&
        waitpid(child, &status, 0) == child && status == 0)
        return;
    std::fprintf(stderr, "%s failed\n", words[0]);
    std::exit(1);
}

// The name of a variant, and its command up to the next "--".
std::vector<bench::Variant> Variants(char** word)
{
    std::vector<bench::Variant> variants;
    while (*word != nullptr)
    {
        const char* const name = *word++;
        Words words;
        for (; *word != nullptr && std::strcmp(*word, "--") != 0; ++word) words.push_back(*word);
        if (*word != nullptr) ++word;
        variants.push_back(bench::Timed(name, [words] { RunToItsEnd(words); }));
    }
    return variants;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 5 || std::atoi(argv[2]) < 1)
    {
        std::fprintf(stderr, "usage: bench_spawn CONTEST ROUNDS NAME COMMAND [ARGUMENT...] [-- NAME COMMAND...]\n");
        return 2;
    }
    bench::Run({argv[1], std::atoi(argv[2]), Variants(argv + 3)});
}
