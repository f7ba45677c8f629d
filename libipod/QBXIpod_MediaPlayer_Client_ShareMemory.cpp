// The two shared-memory segments and their ten vectors.
#include <QBXIpodShareMemory.h>

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
void Find(QBXSharedSegment& segment, const char* name, Vector*& vector)
{
    const typename Vector::allocator_type allocator(segment.get_segment_manager());
    vector = qbx::UnderSegmentLock([&] { return segment.find_or_construct<Vector>(name)(allocator); });
}

void AttachLists()
{
    segment_list_vector = qbx::AttachSegment(kListSegmentName, kListSegmentSize);
    qbx::listMapping = qbx::MappingOf(segment_list_vector);
    Find(segment_list_vector, "VecPlayingListShareMemory", g_VecPlayingListShareMemory);
    Find(segment_list_vector, "VecDBListShareMemory", g_VecDBListShareMemory);
    Find(segment_list_vector, "VecDBListPinyinShareMemory", g_VecDBListPinyinShareMemory);
    Find(segment_list_vector, "VecUpdateListShareMemory", g_VecUpdateListShareMemory);
    Find(segment_list_vector, "VecUpdateListPinyinShareMemory", g_VecUpdateListPinyinShareMemory);
    Find(segment_list_vector, "VecDeviceListShareMemory", g_VecDeviceListShareMemory);
}

void AttachBuffers()
{
    segment_buffer_vector = qbx::AttachSegment(kBufferSegmentName, kBufferSegmentSize);
    qbx::bufferMapping = qbx::MappingOf(segment_buffer_vector);
    Find(segment_buffer_vector, "VecArtworkBufferShareMemory", g_VecArtworkBufferShareMemory);
    Find(segment_buffer_vector, "VecArtworkChangeBufferShareMemory", g_VecArtworkChangeBufferShareMemory);
    Find(segment_buffer_vector, "VecEapWriteBufferShareMemory", g_VecEapWriteBufferShareMemory);
    Find(segment_buffer_vector, "VecEapReadBufferShareMemory", g_VecEapReadBufferShareMemory);
}
}  // namespace

// Once only, even when it fails: a segment that could not be attached stays unattached in this process.
void QBXIpod_MediaPlayer_Client::InitShareMemory()
{
    LOG_INFO("%s()", __func__);
    if (g_bShareMemoryInited) return;
    g_bShareMemoryInited = true;
    AttachLists();
    AttachBuffers();
}
