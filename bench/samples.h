/// @file
/// The sample data of the benchmark: names, images, and records with fixed contents.
#pragma once

#include <QBXIpodShareMemory.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench
{
/// Names of 8 to 40 characters, 24 on average, like song titles; the same in every process.
std::vector<std::string> SampleNames(std::size_t count);

/// Bytes with the entropy of a compressed image.
std::vector<unsigned char> SampleBytes(std::size_t count);

/// Stores @p names in a page, reusing its memory.
void FillPage(QBXStringPageVector& page, const std::vector<std::string>& names);
}  // namespace bench
