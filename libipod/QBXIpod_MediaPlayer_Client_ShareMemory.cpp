// The two shared-memory segments and their ten vectors.
#include <QBXIpodShareMemory.h>

#include <vector>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/log.h"
#include "internal/segments.h"

QBXStringPageVector* g_VecPlayingListShareMemory = nullptr;
QBXStringPageVector* g_VecDBListShareMemory = nullptr;
QBXStringPageVector* g_VecDBListPinyinShareMemory = nullptr;
QBXStringPageVector* g_VecUpdateListShareMemory = nullptr;
QBXStringPageVector* g_VecUpdateListPinyinShareMemory = nullptr;
QBXStringPageVector* g_VecDeviceListShareMemory = nullptr;
QBXByteVector* g_VecArtworkBufferShareMemory = nullptr;
QBXByteVector* g_VecArtworkChangeBufferShareMemory = nullptr;
QBXByteVector* g_VecEapWriteBufferShareMemory = nullptr;
QBXByteVector* g_VecEapReadBufferShareMemory = nullptr;

namespace
{
bool g_bShareMemoryInited = false;

template <class Vector>
struct NamedVector
{
    const char* name;
    Vector*& pointer;
};

// In construction order.
constexpr NamedVector<QBXStringPageVector> kLists[] = {
    {"VecPlayingListShareMemory", g_VecPlayingListShareMemory},
    {"VecDBListShareMemory", g_VecDBListShareMemory},
    {"VecDBListPinyinShareMemory", g_VecDBListPinyinShareMemory},
    {"VecUpdateListShareMemory", g_VecUpdateListShareMemory},
    {"VecUpdateListPinyinShareMemory", g_VecUpdateListPinyinShareMemory},
    {"VecDeviceListShareMemory", g_VecDeviceListShareMemory},
};

constexpr NamedVector<QBXByteVector> kBuffers[] = {
    {"VecArtworkBufferShareMemory", g_VecArtworkBufferShareMemory},
    {"VecArtworkChangeBufferShareMemory", g_VecArtworkChangeBufferShareMemory},
    {"VecEapWriteBufferShareMemory", g_VecEapWriteBufferShareMemory},
    {"VecEapReadBufferShareMemory", g_VecEapReadBufferShareMemory},
};

template <class Vector>
Vector* FindOrConstruct(QBXSegmentManager& manager, const char* name)
{
    const typename Vector::allocator_type allocator(&manager);
    return qbx::UnderSegmentLock([&] { return manager.find_or_construct<Vector>(name)(allocator); });
}

template <class Vector, std::size_t Count>
qbx::Furnish ConstructAll(const NamedVector<Vector> (&vectors)[Count])
{
    return [&vectors](QBXSegmentManager& manager)
    {
        for (const auto& vector : vectors) FindOrConstruct<Vector>(manager, vector.name);
    };
}

template <class Vector, std::size_t Count>
std::vector<const char*> NamesOf(const NamedVector<Vector> (&vectors)[Count])
{
    std::vector<const char*> names;
    for (const auto& vector : vectors) names.push_back(vector.name);
    return names;
}

template <class Vector, std::size_t Count>
void FindAll(QBXSharedSegment& segment, const char* name, const NamedVector<Vector> (&vectors)[Count])
{
    qbx::CheckNames(segment, name, NamesOf(vectors));
    for (const auto& vector : vectors)
        vector.pointer = FindOrConstruct<Vector>(*segment.get_segment_manager(), vector.name);
}

void AttachLists()
{
    segment_list_vector = qbx::AttachSegment(kListSegmentName, kListSegmentSize, ConstructAll(kLists));
    qbx::listMapping = qbx::MappingOf(segment_list_vector);
    FindAll(segment_list_vector, kListSegmentName, kLists);
}

void AttachBuffers()
{
    segment_buffer_vector = qbx::AttachSegment(kBufferSegmentName, kBufferSegmentSize, ConstructAll(kBuffers));
    qbx::bufferMapping = qbx::MappingOf(segment_buffer_vector);
    FindAll(segment_buffer_vector, kBufferSegmentName, kBuffers);
}
}  // namespace

// Runs only once, even if it fails: a segment that could not be attached stays unattached in this process.
void QBXIpod_MediaPlayer_Client::InitShareMemory()
{
    LOG_INFO("%s()", __func__);
    if (g_bShareMemoryInited) return;
    g_bShareMemoryInited = true;
    AttachLists();
    AttachBuffers();
}
