/// @file
/// Synthesizes short melodies for sample files.
#pragma once

#include <vector>

namespace ipodsim
{
constexpr int kSampleRate = 44100;

/// Returns mono samples between -1 and 1: plucked notes of a pentatonic scale over a slow bass. The seed determines the
/// melody.
std::vector<float> Melody(unsigned seed, int seconds);
}  // namespace ipodsim
