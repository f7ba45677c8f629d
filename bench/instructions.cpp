// Repeats a single operation, for counting instructions. The difference between two runs of different length is the
// cost of the operation, regardless of the counting tool.
#include <gvariant_data.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "fixture.h"
#include "internal/records.h"
#include "internal/segments.h"
#include "reference.h"
#include "samples.h"
#include "signal_callbacks.h"

namespace
{
using namespace bench;
using Operation = std::function<void()>;

constexpr std::size_t kTrackRecord = 1040;
constexpr std::size_t kEapRecord = 512;
constexpr std::size_t kPicture = 100000;
constexpr std::size_t kRoomForManyVectors = 32 << 20;

unsigned char record[kTrackRecord];
std::vector<std::string> list;

template <class Form>
Operation Extract(Form form)
{
    return [form, value = ReceivedRecord(kTrackRecord)] { form(record, value); };
}

template <class Form>
Operation Build(Form form)
{
    return [form] { g_variant_unref(g_variant_ref_sink(form(record, kEapRecord))); };
}

Operation NamesLibrary(std::size_t count)
{
    return [page = Page(count)] { qbx::CopyNames(page, list); };
}

Operation NamesPacked(std::size_t count)
{
    return [names = PackedNames(SampleNames(count))] { Unpack(names, list); };
}

Operation ArtworkLibrary()
{
    return [picture = Picture(kPicture)] { qbx::CopyBytes(picture); };
}

Operation ArtworkRaw()
{
    return [picture = Picture(kPicture)] { CopyRaw(picture.begin, picture.count); };
}

Operation ArtworkEvent()
{
    return [head = ReceivedRecord(sizeof(qbx::ArtworkHead)), proxy = Proxy(), picture = Picture(kPicture),
            audience = std::make_shared<Audience>(1)] { qbx::CallBack_OnIpodArtworkChange(proxy, head, &Client()); };
}

// What GLib calls for a received event: all that the library adds to GDBus.
Operation StatusEvent(std::size_t listeners)
{
    using Callback = qbx::CallbackFor<decltype(ComZarnLinuxIpodIface::on_play_status_changed)>;
    return [proxy = Proxy(), audience = std::make_shared<Audience>(listeners)]
    { Callback::Forward<&QBXIpod_MediaPlayer_Client::OnPlayStatusChanged>(proxy, 1, &Client()); };
}

// The same listeners, each called once without the library.
Operation StatusCalls(std::size_t listeners)
{
    std::vector<std::unique_ptr<IQBXIpodPlayerListener>> audience(listeners);
    for (auto& listener : audience) listener = std::make_unique<CountingListener>();
    return [audience = std::make_shared<decltype(audience)>(std::move(audience))]
    {
        for (const auto& listener : *audience) listener->OnPlayStatusChanged(static_cast<iPodPlayerPlayStatus>(1));
    };
}

Operation FillLibrary(std::size_t size)
{
    return [buffer = WriteBuffer(size), data = SampleBytes(size)] { qbx::Replace(buffer, qbx::bufferMapping, data); };
}

Operation FillRaw(std::size_t size)
{
    return [buffer = WriteBuffer(size), data = SampleBytes(size)]
    { std::memcpy(buffer->data(), data.data(), data.size()); };
}

// Uses a new vector each time and frees none, so that freeing is not measured.
Operation FillEmptyLibrary()
{
    static QBXSharedSegment segment(boost::interprocess::open_or_create, "BenchSegment", kRoomForManyVectors);
    return [mapping = qbx::MappingOf(segment), data = SampleBytes(kPicture)]
    {
        const QBXByteVector::allocator_type allocator(segment.get_segment_manager());
        qbx::Replace(segment.construct<QBXByteVector>(boost::interprocess::anonymous_instance)(allocator), mapping,
                     data);
    };
}

const std::map<std::string, std::function<Operation()>> kOperations = {
    {"extract-library",
     [] { return Extract([](unsigned char* to, GVariant* value) { gvariant_data_extract(to, value); }); }},
    {"extract-iterator", [] { return Extract(ExtractByIterator); }},
    {"build-library", [] { return Build([](void* data, int size) { return gvariant_data_build(data, size); }); }},
    {"build-iterator", [] { return Build(BuildByIterator); }},
    {"names-library-100", [] { return NamesLibrary(100); }},
    {"names-packed-100", [] { return NamesPacked(100); }},
    {"names-library-1000", [] { return NamesLibrary(1000); }},
    {"names-packed-1000", [] { return NamesPacked(1000); }},
    {"artwork-library", ArtworkLibrary},
    {"artwork-raw", ArtworkRaw},
    {"artwork-event", ArtworkEvent},
    {"status-event-1", [] { return StatusEvent(1); }},
    {"status-event-101", [] { return StatusEvent(101); }},
    {"status-calls-1", [] { return StatusCalls(1); }},
    {"status-calls-101", [] { return StatusCalls(101); }},
    {"fill-library-10", [] { return FillLibrary(10000); }},
    {"fill-raw-10", [] { return FillRaw(10000); }},
    {"fill-library-100", [] { return FillLibrary(100000); }},
    {"fill-raw-100", [] { return FillRaw(100000); }},
    {"fill-empty-library-100", FillEmptyLibrary},
};
}  // namespace

int main(int argc, char** argv)
{
    const auto found = kOperations.find(argc == 3 ? argv[1] : "");
    if (found == kOperations.end() || std::atoi(argv[2]) < 0)
    {
        std::fprintf(stderr, "usage: bench_instructions OPERATION TIMES, with one of these operations:\n");
        for (const auto& known : kOperations) std::fprintf(stderr, "  %s\n", known.first.c_str());
        return 2;
    }
    const Operation operation = found->second();
    for (int i = std::atoi(argv[2]); i > 0; --i) operation();
}
