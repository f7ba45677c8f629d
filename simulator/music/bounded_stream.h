/// @file
/// A file that TagLib reads: only so much of it, and only until it is cancelled.
#pragma once

#include <taglib/tfilestream.h>

#include <algorithm>
#include <atomic>
#include <cstddef>

namespace ipodsim
{
/// Looking for the first frame, TagLib reads a file to its end, which takes minutes for gigabytes without one. This
/// stream ends early instead. It opens the file for reading only: closing a file that could have been written counts as
/// a change of its folder.
class BoundedStream : public TagLib::FileStream
{
public:
    /// @param cancelled  ends the stream when it becomes true; may be null
    BoundedStream(const char* file, const std::atomic<bool>* cancelled) : FileStream(file, true), m_cancelled(cancelled)
    {
    }

    TagLib::ByteVector readBlock(unsigned long length) override
    {
        const TagLib::ByteVector block = FileStream::readBlock(Ended() ? 0 : std::min(length, m_left));
        m_left -= block.size();
        return block;
    }
    // A backward search goes on to the start of the file, whatever it reads.
    void seek(long offset, Position from) override
    {
        if (!Ended()) FileStream::seek(offset, from);
    }

private:
    bool Ended() const { return m_left == 0 || (m_cancelled != nullptr && *m_cancelled); }

    unsigned long m_left = 32UL << 20U;  // tags and their pictures are smaller
    const std::atomic<bool>* m_cancelled;
};
}  // namespace ipodsim
