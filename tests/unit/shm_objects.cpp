#include "shm_objects.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test
{
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
