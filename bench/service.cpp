// The minimal service of the benchmark: it replies at once and does only the work that the comparison needs. The driver
// configures it through a separate interface.
#include <QBXIpodShareMemory.h>
#include <ipod_dbus.h>

#include <cstdio>

#include "protocol.h"
#include "samples.h"

namespace
{
using namespace bench;

// Long enough for the client to go to sleep after the reply that precedes an event.
constexpr gulong kPauseBeforeEvent = 150;

struct Service
{
    QBXSharedSegment lists{boost::interprocess::open_or_create, kListSegmentName, kListSegmentSize};
    QBXSharedSegment buffers{boost::interprocess::open_or_create, kBufferSegmentName, kBufferSegmentSize};
    QBXStringPageVector* page = nullptr;
    QBXByteVector* artwork = nullptr;
    QBXByteVector* written = nullptr;
    std::vector<std::string> names;
    std::vector<unsigned char> bytes;
    bool fillsEachTime = false;
    ComZarnLinuxIpod* skeleton = com_zarn_linux_ipod_skeleton_new();
    ComZarnLinuxIpod* bareSkeleton = com_zarn_linux_ipod_skeleton_new();
    GVariant* trackRecord = nullptr;
    GVariant* artworkHead = nullptr;
};

// Zeros: the image that the head announces is there.
GVariant* ArtworkHead()
{
    const std::vector<unsigned char> bytes(16);
    GVariant* const inner = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
    return g_variant_ref_sink(g_variant_new_variant(inner));
}

// Four texts of 24 characters in their slots.
GVariant* TrackRecord()
{
    std::vector<unsigned char> bytes(1040);
    for (std::size_t slot = 0; slot < 4; ++slot)
        for (std::size_t i = 0; i < 24; ++i) bytes[slot * 256 + i] = static_cast<unsigned char>('a' + i);
    GVariant* const inner = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
    return g_variant_ref_sink(g_variant_new_variant(inner));
}

template <class Vector>
Vector* Find(QBXSharedSegment& segment, const char* name)
{
    return segment.find_or_construct<Vector>(name)(typename Vector::allocator_type(segment.get_segment_manager()));
}

// Frees the memory: the segment cannot hold a large image and large writes at the same time.
void Empty(QBXByteVector& vector)
{
    vector.clear();
    vector.shrink_to_fit();
}

void FillArtwork(Service& service)
{
    service.artwork->reserve(service.bytes.size());
    service.artwork->assign(service.bytes.begin(), service.bytes.end());
}

gboolean OnVoidWithVariant(ComZarnLinuxIpod*, GDBusMethodInvocation* call, GVariant*, gpointer)
{
    g_dbus_method_invocation_return_value(call, nullptr);
    return TRUE;
}

gboolean OnGetPlayStatus(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, gpointer)
{
    com_zarn_linux_ipod_complete_get_play_status(object, call, 1);
    return TRUE;
}

gboolean OnPause(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, gpointer)
{
    com_zarn_linux_ipod_complete_pause(object, call, TRUE);
    return TRUE;
}

gboolean OnSetButtonStatus(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, GVariant*, gpointer)
{
    com_zarn_linux_ipod_complete_set_button_status(object, call, TRUE);
    return TRUE;
}

gboolean OnNotify(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, gboolean, gboolean, gpointer)
{
    com_zarn_linux_ipod_complete_carplay_connect_status_notify(object, call);
    return TRUE;
}

gboolean OnEapWrite(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, guint16, gpointer)
{
    com_zarn_linux_ipod_complete_eap_write(object, call, TRUE);
    return TRUE;
}

gboolean OnGetIpodName(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, gpointer)
{
    com_zarn_linux_ipod_complete_get_ipod_name(object, call, "Phone");
    return TRUE;
}

gboolean OnGetCurrentMediaInfo(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, Service* service)
{
    com_zarn_linux_ipod_complete_get_current_media_info(object, call, service->trackRecord);
    return TRUE;
}

gboolean OnGetPlayingListItems(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, gint, gint, Service* service)
{
    if (service->fillsEachTime) FillPage(*service->page, service->names);
    com_zarn_linux_ipod_complete_get_playing_list_items(object, call, TRUE);
    return TRUE;
}

gboolean OnGetArtwork(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, Service* service)
{
    if (service->fillsEachTime) FillArtwork(*service);
    com_zarn_linux_ipod_complete_get_playing_track_album_artwork(object, call, service->artworkHead);
    return TRUE;
}

// Replies first, lets the client go to sleep, then emits: on the library's object or on the bare one.
gboolean OnSeek(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, gint bare, Service* service)
{
    GDBusConnection* const bus = g_dbus_method_invocation_get_connection(call);
    com_zarn_linux_ipod_complete_seek(object, call);
    g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    g_usleep(kPauseBeforeEvent);
    com_zarn_linux_ipod_emit_on_play_status_changed(bare ? service->bareSkeleton : service->skeleton, 1);
    return TRUE;
}

gboolean OnGetPlayingListItemsAmount(ComZarnLinuxIpod* object, GDBusMethodInvocation* call, Service* service)
{
    com_zarn_linux_ipod_complete_get_playing_list_items_amount(object, call, static_cast<gint>(service->names.size()));
    return TRUE;
}

// A request without arguments; the answer as text.
gboolean OnStateRequest(ComZarnLinuxIpod*, GDBusMethodInvocation* call, gpointer answer)
{
    g_dbus_method_invocation_return_value(call, g_variant_new_parsed(static_cast<const char*>(answer)));
    return TRUE;
}

// The remaining requests of a session that starts.
void ConnectStateRequests(Service& service)
{
    static char answers[][2][48] = {{"handle-get-playing-track-idx", "(1,)"},
                                    {"handle-get-play-position", "(1000, 60000)"},
                                    {"handle-get-shuffle-mode", "(2,)"},
                                    {"handle-get-repeat-mode", "(1,)"},
                                    {"handle-get-device-amount", "(1,)"},
                                    {"handle-get-ipod-app-bundle-name", "('com.example.app',)"},
                                    {"handle-get-carplay-device-detect-status", "(byte 0, 'SERIAL')"},
                                    {"handle-get-carlife-device-detect-status", "(1,)"}};
    for (auto& [signal, answer] : answers)
        g_signal_connect(service.skeleton, signal, G_CALLBACK(OnStateRequest), answer);
}

void ConnectThinCommands(Service& service)
{
    const auto on = [&service](const char* signal, GCallback callback)
    { g_signal_connect(service.skeleton, signal, callback, &service); };
    on("handle-get-play-status", G_CALLBACK(OnGetPlayStatus));
    on("handle-pause", G_CALLBACK(OnPause));
    on("handle-set-button-status", G_CALLBACK(OnSetButtonStatus));
    on("handle-eap-init", G_CALLBACK(OnVoidWithVariant));
    on("handle-carplay-connect-status-notify", G_CALLBACK(OnNotify));
    on("handle-get-ipod-name", G_CALLBACK(OnGetIpodName));
}

void ConnectBulkCommands(Service& service)
{
    const auto on = [&service](const char* signal, GCallback callback)
    { g_signal_connect(service.skeleton, signal, callback, &service); };
    on("handle-get-current-media-info", G_CALLBACK(OnGetCurrentMediaInfo));
    on("handle-get-playing-list-items", G_CALLBACK(OnGetPlayingListItems));
    on("handle-get-playing-list-items-amount", G_CALLBACK(OnGetPlayingListItemsAmount));
    on("handle-get-playing-track-album-artwork", G_CALLBACK(OnGetArtwork));
    on("handle-eap-write", G_CALLBACK(OnEapWrite));
    on("handle-seek", G_CALLBACK(OnSeek));
}

GVariant* NamesReply(const Service& service)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("as"));
    for (const std::string& name : service.names) g_variant_builder_add(&builder, "s", name.c_str());
    return g_variant_new("(as)", &builder);
}

GVariant* BytesReply(const Service& service)
{
    GVariant* const inner =
        g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, service.bytes.data(), service.bytes.size(), 1);
    return g_variant_new("(v)", inner);
}

GVariant* Prepare(Service& service, GVariant* arguments)
{
    gint32 names = 0;
    gint32 bytes = 0;
    gboolean fillsEachTime = FALSE;
    g_variant_get(arguments, "(iib)", &names, &bytes, &fillsEachTime);
    service.names = SampleNames(static_cast<std::size_t>(names));
    service.bytes = SampleBytes(static_cast<std::size_t>(bytes));
    service.fillsEachTime = fillsEachTime;
    FillPage(*service.page, service.names);
    Empty(*service.written);
    Empty(*service.artwork);
    FillArtwork(service);
    return nullptr;
}

GVariant* Emit(const Service& service, GVariant* arguments)
{
    gint32 times = 0;
    g_variant_get(arguments, "(i)", &times);
    for (gint32 i = 0; i < times; ++i)
        com_zarn_linux_ipod_emit_on_play_status_changed(service.skeleton, static_cast<guchar>(2 + i % 2));
    return nullptr;
}

GVariant* Answer(Service& service, const std::string& method, GVariant* arguments)
{
    if (method == "Prepare") return Prepare(service, arguments);
    if (method == "Emit") return Emit(service, arguments);
    if (method == "Names") return NamesReply(service);
    if (method == "Bytes") return BytesReply(service);
    return nullptr;
}

void OnBenchCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method, GVariant* arguments,
                 GDBusMethodInvocation* call, gpointer service)
{
    g_dbus_method_invocation_return_value(call, Answer(*static_cast<Service*>(service), method, arguments));
}

void ExportBenchInterface(GDBusConnection* bus, Service& service)
{
    static const GDBusInterfaceVTable table = {OnBenchCall, nullptr, nullptr, {}};
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(kBenchXml, nullptr);
    g_dbus_connection_register_object(bus, kBenchPath, node->interfaces[0], &table, &service, nullptr, nullptr);
}

void OnBus(GDBusConnection* bus, const gchar*, gpointer data)
{
    Service& service = *static_cast<Service*>(data);
    g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(service.skeleton), bus, kObjectPath, nullptr);
    g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(service.bareSkeleton), bus, kBareObjectPath, nullptr);
    ExportBenchInterface(bus, service);
}

void OnName(GDBusConnection*, const gchar*, gpointer)
{
    std::puts("ready");
    std::fflush(stdout);
}
}  // namespace

int main()
{
    Service service;
    service.page = Find<QBXStringPageVector>(service.lists, "VecPlayingListShareMemory");
    service.artwork = Find<QBXByteVector>(service.buffers, "VecArtworkBufferShareMemory");
    service.written = Find<QBXByteVector>(service.buffers, "VecEapWriteBufferShareMemory");
    service.trackRecord = TrackRecord();
    service.artworkHead = ArtworkHead();
    ConnectThinCommands(service);
    ConnectBulkCommands(service);
    ConnectStateRequests(service);
    g_bus_own_name(G_BUS_TYPE_SESSION, kBusName, G_BUS_NAME_OWNER_FLAGS_NONE, OnBus, OnName, nullptr, &service,
                   nullptr);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
