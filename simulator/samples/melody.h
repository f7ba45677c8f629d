/// @file
/// Short melodies, synthesised: something pleasant to fill sample files with.
#pragma once

#include <vector>

namespace ipodsim
{
constexpr int kSampleRate = 44100;

/// Mono samples from -1 to 1. Plucked notes of a pentatonic scale over a slow bass; each seed gives its own melody, the
/// same one every time.
std::vector<float> Melody(unsigned seed, int seconds);
}  // namespace ipodsim
