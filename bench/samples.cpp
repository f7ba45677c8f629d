#include "samples.h"

#include <cstring>
#include <random>

namespace bench
{
namespace
{
constexpr std::size_t kShortest = 8;
constexpr std::size_t kLongest = 40;

void FillEntry(PlayListSongNameStr& entry, const std::string& name)
{
    std::memcpy(entry.name, name.c_str(), name.size() + 1);
}
}  // namespace

std::vector<std::string> SampleNames(std::size_t count)
{
    std::minstd_rand random(4711);
    std::vector<std::string> names(count);
    for (std::string& name : names)
        for (std::size_t length = kShortest + random() % (kLongest - kShortest + 1); name.size() < length;)
            name += static_cast<char>('a' + random() % 26);
    return names;
}

std::vector<unsigned char> SampleBytes(std::size_t count)
{
    std::minstd_rand random(4711);
    std::vector<unsigned char> bytes(count);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random() >> 8);
    return bytes;
}

void FillPage(QBXStringPageVector& page, const std::vector<std::string>& names)
{
    if (page.capacity() < names.size()) page.reserve(names.size());
    page.resize(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) FillEntry(page[i], names[i]);
}
}  // namespace bench
