/// @file
/// A folder of sample files, for people and tests that have no music at hand.
#pragma once

#include <string>

namespace ipodsim
{
/// Writes short tagged audio files with covers below @p folder, which is made when it is missing: FLAC, Ogg Vorbis and
/// MP3, one sub-folder per album. Files of the same names are replaced.
///
/// @return how many files were written
/// @throws std::runtime_error  a file or folder cannot be written
int MakeSamples(const std::string& folder);
}  // namespace ipodsim
