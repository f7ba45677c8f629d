#include "session/state_reader.h"

#include <QBXIpodShareMemory.h>

#include <algorithm>
#include <utility>

#include "commands/requests.h"
#include "loop/context.h"
#include "memory/shared_vectors.h"

namespace ipodkit
{
namespace
{
// The bus allows a connection 128 pending answers. Those of a hung service stay pending until it resumes.
constexpr int kMostAttempts = 5;
constexpr auto kFirstWait = std::chrono::seconds(1);

// Longer than any service runs: the reader's own timers detect late answers.
constexpr auto kForever = std::chrono::hours(24 * 24);

guint Milliseconds(std::chrono::milliseconds time)
{
    return static_cast<guint>(std::clamp<std::int64_t>(time.count(), 1, G_MAXINT));
}

// Other errors come from the bus, and are followed by a change of owner.
bool IsAnswer(const Error& error)
{
    return error.kind == ErrorKind::Refused || error.kind == ErrorKind::BadReply;
}
}  // namespace

StateReader::StateReader(GMainContext* context, std::shared_ptr<detail::Bus> bus, std::chrono::milliseconds deadline,
                         StateDraft& draft, PictureCache& pictures, std::function<void()> progressed)
    : m_context(g_main_context_ref(context)),
      m_bus(std::move(bus)),
      m_deadline(deadline),
      m_draft(draft),
      m_pictures(pictures),
      m_progressed(std::move(progressed))
{
}

void StateReader::Stop()
{
    ++m_round;
    m_timers.clear();
    m_open = {};
    m_missing = {};
    m_started = false;
    m_answered = false;
    m_devicesChanged = false;
    m_artworkOutdated = false;
}

void StateReader::Start()
{
    Stop();
    m_started = true;
    ReadAll();
}

template <class T, class Take>
void StateReader::Ask(Field field, const Question<T>& question, const Take& take)
{
    const auto send = [this, field, question, take, serial = ++m_last[field]]
    { Send<T>(field, serial, question, take); };
    const auto late = [this, field, send, asked = m_asked]
    {
        m_missing = m_missing | field;
        Forget(field, *asked, Unknown::TimedOut);
        Late(field, kFirstWait, 1, send);
        m_progressed();
    };
    m_open = m_open | field;
    m_missing = m_missing.Without(field);
    m_timers[field] = After(m_context.get(), Milliseconds(m_deadline), late);
    send();
}

// Answers arrive in order, so the later of two answers about one field is the more recent value. An answer to an
// earlier request counts, but the field is read only when the last request is answered: it may have changed in between.
template <class T, class Take>
void StateReader::Send(Field field, unsigned serial, const Question<T>& question, const Take& take)
{
    question().Within(kForever).Start(
        [weak = weak_from_this(), round = m_round, field, serial, take, asked = m_asked](const Result<T>& result)
        {
            const auto self = weak.lock();
            if (self == nullptr || self->m_round != round || (!result && !IsAnswer(result.error()))) return;
            if (result)
                take(*result);
            else
                self->Forget(field, *asked, Unknown::Refused, &result.error());
            self->Answered(field, serial);
        });
}

// The last value may belong to another device. A value that an event reported meanwhile stays known.
void StateReader::Forget(Field field, const PlayerState& asked, Unknown why, const Error* cause)
{
    if (!Differences(asked, m_draft.State()).Has(field)) m_draft.Forget(field, why, cause);
}

void StateReader::Late(Field field, std::chrono::milliseconds wait, int attempts, const std::function<void()>& again)
{
    if (attempts == kMostAttempts) return;
    m_timers[field] = After(m_context.get(), Milliseconds(wait),
                            [this, field, wait, attempts, again]
                            {
                                again();
                                Late(field, 4 * wait, attempts + 1, again);
                            });
}

void StateReader::Answered(Field field, unsigned serial)
{
    m_answered = true;
    if (serial != m_last[field]) return m_progressed();
    m_timers.erase(field);
    m_open = m_open.Without(field);
    m_missing = m_missing.Without(field);
    if (field == Field::Artwork && std::exchange(m_artworkOutdated, false)) ReadArtwork();
    if (Settled() && std::exchange(m_devicesChanged, false)) ReadDevices();
    m_progressed();
}

template <class T, class Set>
void StateReader::Read(Field field, Request<T> (Commands::*question)() const, const Set& set)
{
    const Commands commands(m_bus, m_deadline);
    Ask<T>(
        field, [commands, question] { return (commands.*question)(); }, set);
}

template <class T>
void StateReader::Read(Field field, Request<T> (Commands::*question)() const, Known<T> PlayerState::*member)
{
    Read(field, question, [this, member](const T& value) { m_draft.Set(member, value); });
}

void StateReader::ReadAll(Fields fields)
{
    m_asked = std::make_shared<const PlayerState>(m_draft.State());
    const auto read = [this, fields](Field field, auto question, const auto& set)
    {
        if (fields.Has(field)) Read(field, question, set);
    };
    read(Field::Track, &Commands::CurrentTrack, &PlayerState::track);
    read(Field::TrackIndex, &Commands::PlayingIndex, &PlayerState::trackIndex);
    read(Field::Status, &Commands::PlayStatus, [this](PlayStatus status) { m_draft.SetStatus(status); });
    read(Field::Position, &Commands::Position, [this](const PlayPosition& now) { m_draft.SetPosition(now); });
    read(Field::Shuffle, &Commands::Shuffle, &PlayerState::shuffle);
    read(Field::Repeat, &Commands::Repeat, &PlayerState::repeat);
    read(Field::QueueSize, &Commands::PlayingCount, &PlayerState::queueSize);
    read(Field::DeviceCount, &Commands::DeviceCount, [this](int count) { m_draft.SetDeviceCount(count); });
    read(Field::DeviceName, &Commands::IpodName, &PlayerState::deviceName);
    read(Field::ForegroundApp, &Commands::ForegroundApp, &PlayerState::foregroundApp);
    read(Field::CarPlay, &Commands::CarPlayStatus, &PlayerState::carPlay);
    read(Field::CarLife, &Commands::CarLifeStatus, &PlayerState::carLife);
    if (fields.Has(Field::Artwork)) ReadArtwork();
}

void StateReader::Refresh(Fields fields)
{
    if (m_started) ReadAll(fields);
}

// No event reports which device was attached or detached, its name, or which of the others plays now. Waits for pending
// answers first. Without a device, requests nothing more.
void StateReader::ReadDevices()
{
    m_devicesChanged = !Settled();
    if (m_devicesChanged || !m_started) return;
    m_asked = std::make_shared<const PlayerState>(m_draft.State());
    const Commands commands(m_bus, m_deadline);
    Ask<int>(
        Field::DeviceCount, [commands] { return commands.DeviceCount(); },
        [this](int count)
        {
            m_draft.SetDeviceCount(count);
            if (count > 0)
                ReadAll();
            else
                m_draft.ForgetDevice();
        });
}

void StateReader::ReadArtwork()
{
    m_artworkOutdated = m_open.Has(Field::Artwork);
    if (m_artworkOutdated || !m_started) return;
    m_asked = std::make_shared<const PlayerState>(m_draft.State());
    Ask<PictureHead>(
        Field::Artwork, [this] { return AskForArtwork(m_bus, m_deadline); },
        [this, before = m_draft.State().Artwork()](const PictureHead& head) { TakeArtwork(head, before); });
}

// Artwork that an event delivered meanwhile stays, because it belongs to the playing track.
void StateReader::TakeArtwork(const PictureHead& head, const PicturePtr& before)
{
    const PicturePtr known = m_draft.State().Artwork();
    if (known != nullptr && known != before) return;
    auto bytes = head[0] == 0 ? BytesIn(g_VecArtworkBufferShareMemory) : std::nullopt;
    m_draft.Set(&PlayerState::artwork, bytes ? m_pictures.Put(std::move(*bytes)) : PicturePtr());
}
}  // namespace ipodkit
