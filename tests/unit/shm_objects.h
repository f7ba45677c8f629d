/// @file
/// Shared-memory objects as files: tests put there whatever a broken or foreign process may have left.
#pragma once

#include <string>
#include <vector>

namespace test
{
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
