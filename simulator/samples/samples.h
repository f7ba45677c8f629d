/// @file
/// Sample music files for demos and tests.
#pragma once

#include <filesystem>
#include <string>

namespace ipodsim
{
/// Creates a folder and its missing parents.
/// @throws std::runtime_error  the folder cannot be created; the message names it
void MakeFolder(const std::filesystem::path& folder);

/// Writes short tagged audio files with covers below @p folder, which is created if missing: FLAC, Ogg Vorbis, and MP3,
/// for a device named "Desk iPod" with one folder per album. Existing files are overwritten.
///
/// @return number of files written
/// @throws std::runtime_error  a file or folder cannot be written
int MakeSamples(const std::string& folder);

/// Writes @p count one-second files below @p folder, for a device named "Large iPod": FLAC and MP3, twenty per album,
/// five albums per artist, some names Chinese, one album in ten with a cover. All share one piece of audio, so
/// benchmarks can create many files quickly.
///
/// @return @p count
/// @throws std::runtime_error  a file or folder cannot be written
int MakeManySamples(const std::string& folder, int count);
}  // namespace ipodsim
