/// @file
/// Shared-memory objects as files: tests store what a faulty or unrelated process may have left.
#pragma once

#include <string>
#include <vector>

namespace test
{
/// A unique name for a shared-memory object, which is removed on destruction.
class ObjectName
{
public:
    ObjectName();
    ~ObjectName();
    ObjectName(const ObjectName&) = delete;
    ObjectName& operator=(const ObjectName&) = delete;

    const char* c_str() const { return m_name.c_str(); }

    /// The object's path in the file system.
    std::string path() const { return "/dev/shm/" + m_name; }

private:
    std::string m_name;
};

/// Reads a file; throws if it cannot be read.
std::vector<char> ReadFile(const std::string& path);

/// Creates or replaces a file; throws if it cannot be written.
void WriteFile(const std::string& path, const std::vector<char>& bytes);
}  // namespace test
