/// @file
/// A folder with music in it, for one test.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// A folder that is removed again.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "ipodsim-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
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

    /// A sample that the build made; "3 Rain on Copper.ogg" unless another one is named.
    std::filesystem::path CopySample(const std::filesystem::path& name,
                                     const std::string& sample = "Lanterns/3 Rain on Copper.ogg") const
    {
        std::filesystem::create_directories((path / name).parent_path());
        std::filesystem::copy_file(std::filesystem::path(IPOD_SAMPLES) / "Desk iPod" / sample, path / name);
        return path / name;
    }

    std::filesystem::path path;
};
