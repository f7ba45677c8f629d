#include "private_shm.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test
{
namespace
{
bool isPrivate = false;

bool WriteText(const char* path, const std::string& text)
{
    const int fd = open(path, O_WRONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool written = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(fd);
    return written;
}

// Somebody who is not root becomes root of a user namespace first.
bool EnterNamespaces()
{
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    if (unshare(CLONE_NEWNS) == 0) return true;
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    return WriteText("/proc/self/setgroups", "deny") && WriteText("/proc/self/uid_map", "0 " + user + " 1") &&
           WriteText("/proc/self/gid_map", "0 " + group + " 1");
}
}  // namespace

bool EnterPrivateShm()
{
    isPrivate = EnterNamespaces() && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                mount("tmpfs", "/dev/shm", "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777,size=64m") == 0;
    return isPrivate;
}

bool HasPrivateShm()
{
    return isPrivate;
}

ObjectName::ObjectName()
{
    static std::atomic<int> count{0};
    m_name = "ipod-unit-test-" + std::to_string(getpid()) + "-" + std::to_string(count++);
}

ObjectName::~ObjectName()
{
    std::remove(path().c_str());
}

std::vector<char> ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::vector<char>& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}
}  // namespace test
