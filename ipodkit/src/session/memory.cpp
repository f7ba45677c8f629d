#include "session/memory.h"

#include <ipodkit/variant.h>

#include <utility>

#include "loop/context.h"
#include "loop/weak_data.h"

namespace ipodkit
{
namespace
{
constexpr int kPatienceMilliseconds = 1000;

template <class T>
std::optional<T> Property(GVariant* properties, const char* name)
{
    const VariantPtr value(g_variant_lookup_value(properties, name, nullptr));
    return value != nullptr ? FromVariant<T>(value.get()) : std::nullopt;
}

template <class T>
bool Set(Known<T>& field, GVariant* properties, const char* name)
{
    std::optional<T> value = Property<T>(properties, name);
    if (value) field = std::move(*value);
    return field.has_value();
}

template <class K, class V>
bool Set(std::map<K, V>& field, GVariant* properties, const char* name)
{
    field = Property<std::map<K, V>>(properties, name).value_or(std::map<K, V>());
    return !field.empty();
}

// Another version of the daemon may know other fields.
PlayerState ToState(GVariant* properties)
{
    PlayerState state;
    ForEachEventField(
        [&](const auto& row)
        {
            const bool known = Set(state.*row.get, properties, PropertyName(row.name).c_str());
            if (known) state.remembered = state.remembered | row.field;
        });
    return state;
}
}  // namespace

Memory::Memory(GMainContext* context, std::function<void(const PlayerState&)> recalled)
    : m_context(g_main_context_ref(context)), m_recalled(std::move(recalled))
{
}

void Memory::Connected(GDBusConnection* connection)
{
    m_connection.reset(G_DBUS_CONNECTION(g_object_ref(connection)));
}

void Memory::Ask(const std::string& service)
{
    Stop();
    if (m_connection == nullptr) return;
    m_service = service;
    m_asking.reset(g_cancellable_new());
    const DefaultContext delivered(m_context.get());
    g_dbus_connection_call(m_connection.get(), kStateName, kStatePath, "org.freedesktop.DBus.Properties", "GetAll",
                           g_variant_new("(s)", kStateName), G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NO_AUTO_START,
                           kPatienceMilliseconds, m_asking.get(), OnAnswer, Weakly(shared_from_this()));
}

void Memory::Stop()
{
    if (m_asking != nullptr) g_cancellable_cancel(m_asking.get());
    m_asking.reset();
    m_events.clear();
}

void Memory::Follow(const Event& event)
{
    if (m_asking != nullptr) m_events.push_back(event);
}

void Memory::OnAnswer(GObject* connection, GAsyncResult* result, gpointer data)
{
    GError* failure = nullptr;
    const VariantPtr answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure));
    const ErrorPtr error(failure);
    const auto self = TakeWeak<Memory>(data);
    if (self == nullptr || g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
    if (answer != nullptr) self->Recall(VariantPtr(g_variant_get_child_value(answer.get(), 0)).get());
    self->Stop();
}

// Applying an event that the answer already includes changes nothing.
void Memory::Recall(GVariant* properties)
{
    if (Property<std::string>(properties, "Service") != m_service) return;
    StateDraft draft;
    draft.Replace(ToState(properties));
    for (const Event& event : m_events) draft.Apply(event);
    if (!draft.State().remembered.Empty()) m_recalled(draft.State());
}
}  // namespace ipodkit
