/// @file
/// Images as files, for interfaces that expect a URI.
#pragma once

#include <ipodkit/error.h>
#include <ipodkit/picture.h>

#include <cstddef>
#include <string>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// Stores images in a directory. Operations block for file access. Any thread may call them; several processes may
/// share the directory.
class PictureFiles
{
public:
    /// @param directory  created when needed, for this user only; empty: "ipodkit" in the user's runtime directory
    /// @param keep       number of images to keep, 0 counts as 1: those returned last, by any process; other files in
    ///                   the directory stay
    explicit PictureFiles(std::string directory = {}, std::size_t keep = 32);

    /// Writes the image unless its file exists, and returns its URI, "file:///…". Equal images have the same URI. The
    /// file is complete when it appears; it stays until `keep` other images have been returned after it.
    /// ErrorKind::NoStorage when it cannot be written.
    Result<std::string> Uri(const Picture& picture) const;

    /// Returns the path of the directory.
    const std::string& Directory() const { return m_directory; }

private:
    __attribute__((visibility("hidden"))) void KeepInUse(const std::string& path) const;

    std::string m_directory;
    std::size_t m_keep;
};
}  // namespace ipodkit

#pragma GCC visibility pop
