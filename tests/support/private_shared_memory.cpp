#include "support/private_shared_memory.h"

#include <QBXIpodShareMemory.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
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

// Map user and group to themselves, so that the bus daemon still recognizes us.
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

// The root of a chroot need not be a mount point, but its /dev/shm may be one.
bool KeepMountsToOurselves()
{
    return mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0 ||
           mount("none", "/dev/shm", "none", MS_PRIVATE, nullptr) == 0;
}

bool MountOwnSharedMemory()
{
    if (unshare(CLONE_NEWNS) != 0 && !EnterUserNamespace()) return false;
    return KeepMountsToOurselves() && mount("tmpfs", "/dev/shm", "tmpfs", 0, "mode=1777,size=64m") == 0;
}

// Held until the process ends.
int WaitForOtherTests()
{
    const std::string name = "libipod-tests-" + std::to_string(getuid()) + ".lock";
    const auto path = std::filesystem::temp_directory_path() / name;
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file >= 0 && flock(file, LOCK_EX) == 0) return file;
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
}

std::string BootId()
{
    std::string id;
    std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), id);
    return id + "\n";
}

bool IsMarked(int lock)
{
    std::string text(64, '\0');
    const ssize_t size = pread(lock, text.data(), text.size(), 0);
    return size > 0 && text.substr(0, static_cast<std::size_t>(size)) == BootId();
}

void SetMark(int lock, const std::string& text)
{
    if (ftruncate(lock, 0) == 0 && pwrite(lock, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()))
        return;
    std::perror("cannot lock out other tests");
    std::exit(EXIT_FAILURE);
}

std::filesystem::path PathOf(const char* segment)
{
    return std::filesystem::path("/dev/shm") / segment;
}

void RefuseToTouch(const char* segment)
{
    if (!exists(symlink_status(PathOf(segment)))) return;
    std::fprintf(stderr, "segment %s is in use on this machine; the tests would corrupt it\n", segment);
    std::exit(EXIT_FAILURE);
}

void RemoveSegments()
{
    std::error_code ignored;
    for (const char* segment : {kListSegmentName, kBufferSegmentName}) remove_all(PathOf(segment), ignored);
}
}  // namespace

PrivateSharedMemory::PrivateSharedMemory()
{
    if (MountOwnSharedMemory() || std::getenv("IPOD_PRIVATE_SHM") != nullptr) return;
    m_lock = WaitForOtherTests();
    if (IsMarked(m_lock)) RemoveSegments();
    RefuseToTouch(kListSegmentName);
    RefuseToTouch(kBufferSegmentName);
    SetMark(m_lock, BootId());
}

PrivateSharedMemory::~PrivateSharedMemory()
{
    if (m_lock < 0) return;
    RemoveSegments();
    SetMark(m_lock, "");
}
}  // namespace test
