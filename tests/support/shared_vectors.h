/// @file
/// The service's side of shared memory: its own mapping of the two segments and of the vectors in them.
#pragma once

#include <QBXIpodShareMemory.h>

#include <cstddef>
#include <string>
#include <vector>

namespace test
{
/// Opens or creates both segments, as the service does. Vectors are named as in the contract, and found or constructed
/// on first use.
class SharedVectors
{
public:
    SharedVectors();

    /// Replaces a list; each name is written with its NUL into a zeroed entry.
    void SetList(const char* vector, const std::vector<std::string>& names);

    /// Replaces a list with raw entries.
    void SetEntries(const char* vector, const std::vector<PlayListSongNameStr>& entries);

    void SetBytes(const char* vector, const std::vector<unsigned char>& bytes);
    std::vector<unsigned char> Bytes(const char* vector);

    QBXStringPageVector& List(const char* vector);
    QBXByteVector& Buffer(const char* vector);

    QBXSharedSegment& Lists() { return m_lists; }
    QBXSharedSegment& Buffers() { return m_buffers; }

private:
    QBXSharedSegment m_lists;
    QBXSharedSegment m_buffers;
};

/// Corrupts the header of a vector, as a broken service may: sets size and capacity to that many elements.
void ForgeSize(void* vector, std::size_t count);

/// A byte vector in a private segment of an application.
class OwnBuffer
{
public:
    explicit OwnBuffer(const std::vector<unsigned char>& bytes);

    QBXByteVector* get() { return m_vector; }

private:
    QBXSharedSegment m_segment;
    QBXByteVector* m_vector;
};

/// An entry with that name, padded with zeros.
PlayListSongNameStr Entry(const std::string& name);
}  // namespace test
