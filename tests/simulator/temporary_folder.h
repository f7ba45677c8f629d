/// @file
/// A temporary music folder for one test.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// A folder that is removed on destruction.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "ipodsim-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot create a temporary folder");
        path = std::filesystem::canonical(name);
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    void Write(const std::filesystem::path& name, const std::string& text) const
    {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream(path / name) << text;
    }

    /// Copies a sample created by the build, "3 Rain on Copper.ogg" by default.
    std::filesystem::path CopySample(const std::filesystem::path& name,
                                     const std::string& sample = "Lanterns/3 Rain on Copper.ogg") const
    {
        std::filesystem::create_directories((path / name).parent_path());
        std::filesystem::copy_file(std::filesystem::path(IPOD_SAMPLES) / "Desk iPod" / sample, path / name);
        return path / name;
    }

    std::filesystem::path path;
};
