/// @file
/// The data that all parts of the benchmark send: names, pictures and records of fixed contents.
#pragma once

#include <QBXIpodShareMemory.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bench
{
/// Names of 8 to 40 characters, 24 on average, as titles of songs are; the same ones in every process.
std::vector<std::string> SampleNames(std::size_t count);

/// Bytes that look like a compressed picture.
std::vector<unsigned char> SampleBytes(std::size_t count);

/// Puts @p names into a page. The page keeps its memory.
void FillPage(QBXStringPageVector& page, const std::vector<std::string>& names);
}  // namespace bench
