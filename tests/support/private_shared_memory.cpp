#include "support/private_shared_memory.h"

#include <QBXIpodShareMemory.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace test
{
namespace
{
void WriteFile(const char* path, const std::string& text)
{
    std::ofstream(path) << text;
}

// The same numbers inside and outside, so that the bus daemon still knows us.
bool EnterUserNamespace()
{
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    WriteFile("/proc/self/setgroups", "deny");
    WriteFile("/proc/self/uid_map", user + " " + user + " 1");
    WriteFile("/proc/self/gid_map", group + " " + group + " 1");
    return true;
}

bool MountOwnSharedMemory()
{
    if (unshare(CLONE_NEWNS) != 0 && !EnterUserNamespace()) return false;
    return mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/dev/shm", "tmpfs", 0, "mode=1777,size=64m") == 0;
}

// Held until the process ends.
void WaitForOtherTests()
{
    const auto path = std::filesystem::temp_directory_path() / "libipod-tests.lock";
    const int file = open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file >= 0 && flock(file, LOCK_EX) == 0) return;
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
}

void RefuseToTouch(const char* segment)
{
    const int file = shm_open(segment, O_RDONLY, 0);
    if (file < 0) return;
    std::fprintf(stderr, "the segment %s is in use on this machine; the tests would disturb it\n", segment);
    std::exit(EXIT_FAILURE);
}
}  // namespace

PrivateSharedMemory::PrivateSharedMemory() : m_ownMount(MountOwnSharedMemory())
{
    if (m_ownMount) return;
    WaitForOtherTests();
    RefuseToTouch(kListSegmentName);
    RefuseToTouch(kBufferSegmentName);
}

PrivateSharedMemory::~PrivateSharedMemory()
{
    if (m_ownMount) return;
    shm_unlink(kListSegmentName);
    shm_unlink(kBufferSegmentName);
}
}  // namespace test
