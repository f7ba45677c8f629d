/// @file
/// A /dev/shm of the test process's own. The names of the segments are global to a machine, so a test must not
/// touch objects that somebody else uses.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace test
{
/// Moves this process into a mount namespace of its own with an empty /dev/shm. Call it while there is one thread.
/// False where the system does not allow it; then the shared /dev/shm stays in place.
bool EnterPrivateShm();

/// Whether EnterPrivateShm() succeeded in this process.
bool HasPrivateShm();

/// A name for a shared-memory object that nobody else uses; an object of that name is removed at the end.
class ObjectName
{
public:
    ObjectName();
    ~ObjectName();
    ObjectName(const ObjectName&) = delete;
    ObjectName& operator=(const ObjectName&) = delete;

    const char* c_str() const { return m_name.c_str(); }

    /// Where the object shows in the file system.
    std::string path() const { return "/dev/shm/" + m_name; }

private:
    std::string m_name;
};

/// All bytes of a file; throws when it cannot be read.
std::vector<char> ReadFile(const std::string& path);

/// Creates or replaces a file; throws when it cannot be written.
void WriteFile(const std::string& path, const std::vector<char>& bytes);
}  // namespace test
