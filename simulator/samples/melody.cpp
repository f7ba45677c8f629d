#include "samples/melody.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <random>

namespace ipodsim
{
namespace
{
constexpr double kPi = 3.14159265358979323846;
constexpr double kFadeSeconds = 1.2;

struct Note
{
    double start = 0;   // seconds
    double length = 0;  // decay time in seconds
    double pitch = 0;   // hertz
    double loudness = 0;
};

// A random number between 0 and count - 1.
int RandomBelow(std::mt19937& random, unsigned count)
{
    return static_cast<int>(random() % count);
}

// The pitch of a step of the major pentatonic scale above a root, over any number of octaves.
double Pitch(double root, int step)
{
    constexpr int kSemitones[] = {0, 2, 4, 7, 9};
    const int octave = step / 5;
    return root * std::pow(2.0, octave + kSemitones[step % 5] / 12.0);
}

// A short attack without a click, then an exponential decay. A rotating phasor supplies the overtones as powers:
// calling sin() for each would dominate the run time.
void Add(std::vector<float>& samples, const Note& note)
{
    constexpr double kAttack = 0.012 * kSampleRate;
    const auto first = static_cast<std::size_t>(note.start * kSampleRate);
    const auto last = std::min(samples.size(), first + static_cast<std::size_t>(note.length * kSampleRate));
    const std::complex<double> turn = std::polar(1.0, 2 * kPi * note.pitch / kSampleRate);
    const double damping = std::exp(-4.5 / (note.length * kSampleRate));
    std::complex<double> tone = 1;
    double loudness = note.loudness;
    for (std::size_t i = first; i < last; ++i, tone *= turn, loudness *= damping)
    {
        const double attack = std::min(static_cast<double>(i - first) / kAttack, 1.0);
        const double wave = (tone + 0.35 * tone * tone + 0.12 * tone * tone * tone).imag();
        samples[i] += static_cast<float>(loudness * attack * wave);
    }
}

// The melody moves up and down the scale with occasional rests.
void AddMelody(std::vector<float>& samples, std::mt19937& random, double root, double beat)
{
    const double end = static_cast<double>(samples.size()) / kSampleRate;
    int step = 5;
    for (double at = 0; at < end; at += beat / 2)
    {
        step = std::clamp(step + RandomBelow(random, 5) - 2, 2, 13);
        if (RandomBelow(random, 4) != 0) Add(samples, {at, 1.6, Pitch(root, step), 0.22});
    }
}

void AddBass(std::vector<float>& samples, double root, double beat)
{
    constexpr int kSteps[] = {0, 3, 4, 2};
    const double end = static_cast<double>(samples.size()) / kSampleRate;
    int bar = 0;
    for (double at = 0; at < end; at += 4 * beat) Add(samples, {at, 4.5, Pitch(root / 2, kSteps[bar++ % 4]), 0.25});
}

void Fade(std::vector<float>& samples)
{
    const auto count = std::min(samples.size(), static_cast<std::size_t>(kFadeSeconds * kSampleRate));
    for (std::size_t i = 0; i < count; ++i)
        samples[samples.size() - 1 - i] *= static_cast<float>(i) / static_cast<float>(count);
}
}  // namespace

std::vector<float> Melody(unsigned seed, int seconds)
{
    std::mt19937 random(seed);
    std::vector<float> samples(static_cast<std::size_t>(seconds) * kSampleRate);
    const double root = 196.0 * std::pow(2.0, RandomBelow(random, 7) / 12.0);
    const double beat = 0.42 + 0.03 * RandomBelow(random, 6);
    AddMelody(samples, random, root, beat);
    AddBass(samples, root, beat);
    Fade(samples);
    for (float& sample : samples) sample = std::clamp(sample, -0.98F, 0.98F);
    return samples;
}
}  // namespace ipodsim
