#include "output/file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void Refuse(const char* what, const std::string& path, ExitCode code = kUsage)
{
    throw Failure(code, std::string("cannot ") + what + " '" + Printable(path) + "': " + std::strerror(errno));
}

[[noreturn]] void RefuseLength(const std::string& path, std::size_t most)
{
    throw Failure(kUsage, "cannot use '" + Printable(path) + "': it is longer than " + std::to_string(most) + " bytes");
}

int LeaveOpen(std::FILE*)
{
    return 0;
}

File Open(const std::string& path)
{
    return path == "-" ? File(stdin, LeaveOpen) : File(std::fopen(path.c_str(), "rbe"), std::fclose);
}
}  // namespace

std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most)
{
    const File file = Open(path);
    if (!file) Refuse("read", path);
    std::vector<unsigned char> bytes;
    unsigned char block[4096];
    while (const std::size_t got = std::fread(block, 1, sizeof(block), file.get()))
    {
        bytes.insert(bytes.end(), block, block + got);
        if (bytes.size() > most) RefuseLength(path, most);
    }
    if (std::ferror(file.get()) != 0) Refuse("read", path);
    return bytes;
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes)
{
    std::FILE* const file = std::fopen(path.c_str(), "wbe");
    if (file == nullptr) Refuse("write", path);
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written) Refuse("write", path, kNoOutput);
}

std::string FileIn(const std::string& path, const char* name, const char* extension)
{
    const std::filesystem::path given(path);
    std::error_code ignored;
    const bool folder = !given.has_filename() || std::filesystem::is_directory(given, ignored);
    if (folder) return (given / name).string() + extension;
    // Use an existing special file such as /dev/null under its exact name.
    const auto there = std::filesystem::status(given, ignored);
    const bool special = std::filesystem::exists(there) && !std::filesystem::is_regular_file(there);
    return given.has_extension() || special ? path : path + extension;
}
}  // namespace ctl
