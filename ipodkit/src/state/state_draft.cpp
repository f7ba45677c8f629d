#include "state/state_draft.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace ipodkit
{
namespace
{
using std::chrono::milliseconds;

// Some services report a negative position for a moment.
milliseconds NotNegative(milliseconds time)
{
    return std::max(time, milliseconds(0));
}

// A member that the event does not carry keeps its value.
template <class T>
void Merge(T& known, const T& reported)
{
    ForEachRow<T>(
        [&](const auto& row)
        {
            if constexpr (std::is_member_object_pointer_v<decltype(row.get)>)
                if (reported.*row.get) known.*row.get = reported.*row.get;
        });
}

// The fields that describe the device or its media. They are unknown while no device is attached.
constexpr Fields kOfDevice = Field::Track | Field::TrackIndex | Field::Position | Field::QueueSize | Field::Artwork |
                             Field::DeviceName | Field::ForegroundApp | Field::Battery;

// Calls @p use with each field of @p state that may be unknown and is one of @p fields.
template <class Use>
void ForEachKnown(PlayerState& state, Fields fields, const Use& use)
{
    ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            if constexpr (kIsKnown<FieldType<PlayerState, std::decay_t<decltype(row)>>>)
                if (fields.Has(row.field)) use(state.*row.get);
        });
}

bool MeansNotSupported(const Error* cause)
{
    static constexpr const char* names[] = {"UnknownMethod", "UnknownInterface", "UnknownObject", "NotSupported"};
    const auto ends = [cause](const std::string& name) { return cause->name == "org.freedesktop.DBus.Error." + name; };
    return cause != nullptr && std::any_of(std::begin(names), std::end(names), ends);
}
}  // namespace

void StateDraft::Reset(const std::string& service)
{
    m_state = {};
    m_state.service = service;
}

// Nothing that was known about the previous device applies to the next one.
void StateDraft::ForgetDevice()
{
    ForEachKnown(m_state, kOfDevice, [](auto& field) { field = Unknown::NoDevice; });
    m_state.remembered = m_state.remembered.Without(kOfDevice);
    ForgetService();
}

void StateDraft::ForgetService()
{
    m_state.calls.clear();
    m_state.accessorySessions.clear();
    m_state.remembered = m_state.remembered.Without(Field::Calls | Field::AccessorySessions);
}

void StateDraft::Forget(Field field, Unknown why, const Error* cause)
{
    if (MeansNotSupported(cause)) why = Unknown::NotSupported;
    if (kOfDevice.Has(field) && m_state.deviceCount == 0) why = Unknown::NoDevice;
    const auto shared = cause == nullptr ? nullptr : std::make_shared<const Error>(*cause);
    ForEachKnown(m_state, field, [&](auto& each) { each = {why, shared}; });
}

// The answer with the number of devices may follow the requests that failed because there is none.
void StateDraft::SetDeviceCount(int count)
{
    m_state.deviceCount = count;
    if (count != 0) return;
    ForEachKnown(m_state, kOfDevice,
                 [](auto& field)
                 {
                     if (!field && field.Why() != Unknown::TimedOut) field = Unknown::NoDevice;
                 });
}

void StateDraft::Apply(const Event& event)
{
    std::visit([this](const auto& each) { On(each); }, event);
    if (!m_state.remembered.Empty()) m_state.remembered = StillRemembered(event);
}

// The fields that an event reports are those that it changes in an empty state. Calls and accessory sessions are
// excluded: an event reports only one of several.
Fields StateDraft::StillRemembered(const Event& event) const
{
    StateDraft empty;
    empty.Apply(event);
    Fields reported = Differences(empty.State(), PlayerState()).Without(Field::Calls | Field::AccessorySessions);
    if (m_state.calls.empty()) reported = reported | Field::Calls;
    if (m_state.accessorySessions.empty()) reported = reported | Field::AccessorySessions;
    return m_state.remembered.Without(reported);
}

void StateDraft::Remember(const PlayerState& earlier)
{
    ForEachEventField(
        [&](const auto& row)
        {
            if (earlier.remembered.Has(row.field)) m_state.*row.get = earlier.*row.get;
        });
    m_state.remembered = earlier.remembered;
}

void StateDraft::On(const DeviceChanged& event)
{
    m_state.device = event.status;
    if (event.status == DeviceStatus::NotDetected) ForgetDevice();
}

void StateDraft::On(const PlayStatusChanged& event)
{
    m_state.status = event.status;
    if (!m_state.position || m_state.position->advancing == Playing()) return;
    const auto now = Clock::now();
    m_state.position = Position{m_state.position->At(now), m_state.position->duration, now, Playing()};
}

void StateDraft::On(const ProgressChanged& event)
{
    m_state.position = Position{NotNegative(event.position), NotNegative(event.duration), Clock::now(), Playing()};
}

// Drops the artwork with its track; the event that announces the new artwork follows this one.
void StateDraft::On(const TrackChanged& event)
{
    m_state.trackIndex = event.index;
    m_state.position = Position{milliseconds(0), NotNegative(event.track.duration), Clock::now(), Playing()};
    m_state.track = event.track;
    m_state.artwork = Unknown::NotReported;
}

void StateDraft::On(const QueueSizeChanged& event)
{
    if (event.size >= 0) m_state.queueSize = event.size;
}

// Calls without an identifier cannot be distinguished: together they are one call.
void StateDraft::On(const CallChanged& event)
{
    const std::string key = event.call.id.value_or("");
    if (event.call.status == CallStatus::Disconnected)
    {
        m_state.calls.erase(key);
        return;
    }
    PhoneCall& call = m_state.calls[key];
    Merge(call, event.call);
    call.id = event.call.id;
}

void StateDraft::On(const BatteryChanged& event)
{
    Battery battery = m_state.battery.value_or({});
    Merge(battery, event.battery);
    m_state.battery = battery;
}
}  // namespace ipodkit
