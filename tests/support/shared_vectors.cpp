#include "support/shared_vectors.h"

namespace test
{
namespace
{
boost::interprocess::permissions Mode()
{
    boost::interprocess::permissions mode;
    mode.set_permissions(0644);
    return mode;
}

template <class Vector>
Vector& FindOrConstruct(QBXSharedSegment& segment, const char* name)
{
    return *segment.find_or_construct<Vector>(name)(typename Vector::allocator_type(segment.get_segment_manager()));
}
}  // namespace

SharedVectors::SharedVectors()
    : m_lists(boost::interprocess::open_or_create, kListSegmentName, kListSegmentSize, nullptr, Mode()),
      m_buffers(boost::interprocess::open_or_create, kBufferSegmentName, kBufferSegmentSize, nullptr, Mode())
{
}

void SharedVectors::SetList(const char* vector, const std::vector<std::string>& names)
{
    std::vector<PlayListSongNameStr> entries;
    for (const std::string& name : names) entries.push_back(Entry(name));
    SetEntries(vector, entries);
}

void SharedVectors::SetEntries(const char* vector, const std::vector<PlayListSongNameStr>& entries)
{
    List(vector).assign(entries.begin(), entries.end());
}

void SharedVectors::SetBytes(const char* vector, const std::vector<unsigned char>& bytes)
{
    Buffer(vector).assign(bytes.begin(), bytes.end());
}

std::vector<unsigned char> SharedVectors::Bytes(const char* vector)
{
    const QBXByteVector& buffer = Buffer(vector);
    return {buffer.begin(), buffer.end()};
}

QBXStringPageVector& SharedVectors::List(const char* vector)
{
    return FindOrConstruct<QBXStringPageVector>(m_lists, vector);
}

QBXByteVector& SharedVectors::Buffer(const char* vector)
{
    return FindOrConstruct<QBXByteVector>(m_buffers, vector);
}

void ForgeSize(void* vector, std::size_t count)
{
    auto* const words = static_cast<std::size_t*>(vector);  // allocator, place, number, capacity
    words[2] = count;
    words[3] = count;
}

OwnBuffer::OwnBuffer(const std::vector<unsigned char>& bytes)
    : m_segment(boost::interprocess::create_only, "SegmentOfTheApplication", 65536),
      m_vector(&FindOrConstruct<QBXByteVector>(m_segment, "bytes"))
{
    boost::interprocess::shared_memory_object::remove("SegmentOfTheApplication");
    m_vector->assign(bytes.begin(), bytes.end());
}

PlayListSongNameStr Entry(const std::string& name)
{
    PlayListSongNameStr entry{};
    name.copy(entry.name, sizeof(entry.name) - 1);
    return entry;
}
}  // namespace test
