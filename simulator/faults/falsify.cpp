#include "faults/falsify.h"

#include <ipodsim.h>

#include <algorithm>
#include <csignal>
#include <cstring>

#include "wire/records.h"

namespace ipodsim
{
namespace
{
constexpr std::uint32_t kRecordCutAt = 10;
constexpr std::uint32_t kRecordGrowsBy = 5000;
constexpr std::uint32_t kNoSuchNumber = 99;

Bytes BytesIn(GVariant* boxed)
{
    GVariant* const inner = g_variant_get_variant(boxed);
    gsize count = 0;
    const auto* const bytes = static_cast<const unsigned char*>(g_variant_get_fixed_array(inner, &count, 1));
    Bytes copy(bytes, bytes + count);
    g_variant_unref(inner);
    return copy;
}

GVariant* Resized(GVariant* boxed, std::size_t size)
{
    Bytes bytes = BytesIn(boxed);
    bytes.resize(size, 'x');
    return Pack(bytes.data(), bytes.size());
}

// A length-delimited field that declares two bytes but holds one.
GVariant* NoMessage()
{
    constexpr unsigned char kCutOff[] = {0x0A, 0x7F, 'x'};
    return Pack(kCutOff, sizeof(kCutOff));
}

GVariant* FalsifyRecord(GVariant* boxed, const Fault& fault)
{
    switch (fault.kind)
    {
        case FaultKind::WrongType:
            return g_variant_new_variant(g_variant_new_string("not a record"));
        case FaultKind::ShortRecord:
            return Resized(boxed, std::min<std::size_t>(BytesIn(boxed).size(), fault.Number(kRecordCutAt)));
        case FaultKind::LongRecord:
            return Resized(boxed, fault.Number(static_cast<std::uint32_t>(BytesIn(boxed).size()) + kRecordGrowsBy));
        case FaultKind::BadMessage:
            return NoMessage();
        default:
            return boxed;
    }
}

GVariant* NumberOf(GVariant* like, std::uint32_t number)
{
    switch (g_variant_classify(like))
    {
        case G_VARIANT_CLASS_BYTE:
            return g_variant_new_byte(static_cast<guchar>(number));
        case G_VARIANT_CLASS_UINT16:
            return g_variant_new_uint16(static_cast<guint16>(number));
        case G_VARIANT_CLASS_INT32:
            return g_variant_new_int32(static_cast<gint32>(number));
        default:
            return like;
    }
}

GVariant* FalsifyValue(GVariant* value, const Fault& fault)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) return FalsifyRecord(value, fault);
    if (fault.kind == FaultKind::OutOfRange) return NumberOf(value, fault.Number(kNoSuchNumber));
    return value;
}

bool HasRecord(GVariant* body)
{
    return std::strchr(g_variant_get_type_string(body), 'v') != nullptr;
}

QBXStringPageVector* NamesOf(Segments& segments, const std::string& method)
{
    if (method == "GetPlayingListItems") return segments.playingList;
    if (method == "GetCurDbListItems") return segments.dbList;
    if (method == "GetCurDbListItemsPinyin") return segments.dbListPinyin;
    if (method == "GetUpdateListItems") return segments.updateList;
    if (method == "GetUpdateListItemsPinyin") return segments.updateListPinyin;
    return method == "GetDeviceList" ? segments.deviceList : nullptr;
}

template <class Vector>
void Halve(Vector& vector)
{
    vector.erase(vector.begin() + static_cast<std::ptrdiff_t>(vector.size() / 2), vector.end());
}
}  // namespace

GVariant* Falsify(GVariant* body, const Fault& fault)
{
    if (fault.kind == FaultKind::WrongType && !HasRecord(body)) return g_variant_new("(s)", "wrong type");
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    for (gsize i = 0; i < g_variant_n_children(body); ++i)
    {
        GVariant* const value = g_variant_get_child_value(body, i);
        g_variant_builder_add_value(&builder, FalsifyValue(value, fault));
        g_variant_unref(value);
    }
    return g_variant_builder_end(&builder);
}

void FalsifyVector(Segments& segments, const std::string& method, FaultKind kind)
{
    if (kind == FaultKind::HalfFilled && method == "GetPlayingTrackAlbumArtwork") Halve(*segments.artwork);
    QBXStringPageVector* const names = NamesOf(segments, method);
    if (names == nullptr) return;
    if (kind == FaultKind::HalfFilled) Halve(*names);
    if (kind == FaultKind::Unterminated)
        for (PlayListSongNameStr& name : *names) std::memset(name.name, 'x', sizeof(name.name));
}

namespace
{
// Nothing is cleaned up, as when the kernel kills a process.
void Die()
{
    std::raise(SIGKILL);
}
}  // namespace

void CrashNow(Segments& segments, const Fault& fault)
{
    if (fault.kind != FaultKind::CrashLocked) return Die();
    if (fault.parameter == "lists") return segments.WithLock(Segments::Lock::Lists, Die);
    if (fault.parameter == "buffers") return segments.WithLock(Segments::Lock::Buffers, Die);
    segments.WithLock(Segments::Lock::Lists, [&] { segments.WithLock(Segments::Lock::Buffers, Die); });
}

namespace
{
using Kept = std::shared_ptr<Faults>;

bool IsSignalOfService(GDBusMessage* message)
{
    return g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_SIGNAL &&
           g_strcmp0(g_dbus_message_get_interface(message), kServiceName) == 0;
}

GDBusMessage* Falsified(GDBusMessage* message, const Fault& fault)
{
    GDBusMessage* const copy = g_dbus_message_copy(message, nullptr);
    g_object_unref(message);
    GVariant* const body = g_dbus_message_get_body(copy);
    if (body != nullptr) g_dbus_message_set_body(copy, Falsify(body, fault));
    return copy;
}

// Runs on GDBus's worker thread. Takes ownership of the message; returning null drops it.
GDBusMessage* OnMessage(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer faults)
{
    if (incoming != FALSE || !IsSignalOfService(message)) return message;
    const auto fault = (*static_cast<Kept*>(faults))->Take(g_dbus_message_get_member(message));
    if (!fault) return message;
    if (fault->kind != FaultKind::NoReply) return Falsified(message, *fault);
    g_object_unref(message);
    return nullptr;
}
}  // namespace

void FalsifySignals(GDBusConnection* connection, const std::shared_ptr<Faults>& faults)
{
    // The data lives as long as the connection, which GDBus's worker thread references while it filters. A destroy
    // notification for the filter would run in the main context, which may no longer exist by then.
    auto* const kept = new Kept(faults);
    g_object_set_data_full(G_OBJECT(connection), "ipodsim-faults", kept,
                           [](gpointer data) { delete static_cast<Kept*>(data); });
    g_dbus_connection_add_filter(connection, OnMessage, kept, nullptr);
}
}  // namespace ipodsim
