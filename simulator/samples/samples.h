/// @file
/// A folder of sample files, for people and tests that have no music at hand.
#pragma once

#include <filesystem>
#include <string>

namespace ipodsim
{
/// Makes a folder, and those that it lies in, where they are missing.
/// @throws std::runtime_error  it cannot be made; the message names it
void MakeFolder(const std::filesystem::path& folder);

/// Writes short tagged audio files with covers below @p folder, which is made when it is missing: FLAC, Ogg Vorbis and
/// MP3, for a device named "Desk iPod" with one folder per album. Files of the same names are replaced.
///
/// @return how many files were written
/// @throws std::runtime_error  a file or folder cannot be written
int MakeSamples(const std::string& folder);

/// Writes @p count files of one second below @p folder, for a device named "Large iPod": FLAC and MP3, twenty to an
/// album, five albums to an artist, some names Chinese, an album in ten with a cover. They are made fast, from one
/// piece of audio, for measuring with many files.
///
/// @return @p count
/// @throws std::runtime_error  a file or folder cannot be written
int MakeManySamples(const std::string& folder, int count);
}  // namespace ipodsim
