/// @file
/// Pictures for those who want a file.
#pragma once

#include <ipodkit/error.h>
#include <ipodkit/picture.h>

#include <cstddef>
#include <string>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// Keeps pictures in a directory of its own. Operations write files and may block as files do; any thread may call
/// them, several processes may share the directory.
class PictureFiles
{
public:
    /// @param directory  made when needed, for this user only; empty: "ipodkit" under the user's runtime directory
    /// @param keep       how many pictures stay, at least 1: those handed out last, by any process; other files of the
    ///                   directory are left alone
    explicit PictureFiles(std::string directory = {}, std::size_t keep = 32);

    /// The file's address, "file:///…". Equal pictures have one address as long as the directory is the same. The file
    /// holds exactly these bytes when this returns, and never half of them. It stays until `keep` other pictures were
    /// handed out after it. ErrorKind::NoStorage.
    Result<std::string> Uri(const Picture& picture) const;

    const std::string& Directory() const { return m_directory; }

private:
    __attribute__((visibility("hidden"))) void KeepInUse(const std::string& path) const;

    std::string m_directory;
    std::size_t m_keep;
};
}  // namespace ipodkit

#pragma GCC visibility pop
