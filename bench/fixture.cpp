#include "fixture.h"

#include <QBXIpodShareMemory.h>
#include <QBXLog.h>

#include <cstdlib>

#include "internal/module_state.h"
#include "internal/segments.h"
#include "samples.h"

namespace bench
{
namespace
{
void Empty(QBXByteVector& vector)
{
    vector.clear();
    vector.shrink_to_fit();
}

// A full-size image and a full-size write buffer do not fit together.
void EmptyBuffers()
{
    Empty(*g_VecArtworkChangeBufferShareMemory);
    Empty(*g_VecEapWriteBufferShareMemory);
}
}  // namespace

QBXIpod_MediaPlayer_Client& Client()
{
    static const int logging = QBX_LogInit("ERROR:/dev/null");
    static auto* const client = static_cast<QBXIpod_MediaPlayer_Client*>(QBX_GetIpodPlayer());
    static_cast<void>(logging);
    return *client;
}

ComZarnLinuxIpod* Proxy()
{
    static ComZarnLinuxIpod* const proxy = COM_ZARN_LINUX_IPOD(g_object_new(TYPE_COM_ZARN_LINUX_IPOD_PROXY, nullptr));
    Client();
    qbx::NoteSubscriber(proxy);
    return proxy;
}

qbx::Snapshot<PlayListSongNameStr> Page(std::size_t count)
{
    Client();
    FillPage(*g_VecPlayingListShareMemory, SampleNames(count));
    return qbx::TakeSnapshot(g_VecPlayingListShareMemory, qbx::listMapping);
}

qbx::Snapshot<unsigned char> Picture(std::size_t size)
{
    Client();
    EmptyBuffers();
    const std::vector<unsigned char> bytes = SampleBytes(size);
    g_VecArtworkChangeBufferShareMemory->reserve(size);
    g_VecArtworkChangeBufferShareMemory->assign(bytes.begin(), bytes.end());
    return qbx::TakeSnapshot(g_VecArtworkChangeBufferShareMemory, qbx::bufferMapping);
}

QBXByteVector* WriteBuffer(std::size_t capacity)
{
    Client();
    EmptyBuffers();
    g_VecEapWriteBufferShareMemory->reserve(capacity);
    return g_VecEapWriteBufferShareMemory;
}

GVariant* ReceivedRecord(std::size_t size)
{
    const std::vector<unsigned char> bytes = SampleBytes(size);
    GVariant* const inner = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
    GVariant* const value = g_variant_ref_sink(g_variant_new_variant(inner));
    g_variant_get_data(value);
    return value;
}

Audience::Audience(std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
    {
        m_listeners.push_back(std::make_unique<CountingListener>());
        Client().AddListener(m_listeners.back().get());
    }
}

Audience::~Audience()
{
    for (const auto& listener : m_listeners)
    {
        if (listener->events == 0) std::abort();
        Client().RemoveListener(listener.get());
    }
}
}  // namespace bench
