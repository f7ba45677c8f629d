#include "player.h"

#include <mpris_info.h>

#include <algorithm>
#include <map>
#include <utility>

#include "root.h"

namespace companion
{
namespace
{
using ipodkit::PlayerState;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds kSettle(20);
constexpr milliseconds kArtworkWithin(300);
// Services report the position about every half second. Around the start and end of a pause, normal playback deviates
// from the prediction by up to that much.
constexpr milliseconds kJump(700);

void AnswerNothing(GDBusMethodInvocation* invocation)
{
    g_dbus_method_invocation_return_value(invocation, nullptr);
}

void Refuse(GDBusMethodInvocation* invocation, const char* error, const std::string& reason)
{
    g_dbus_method_invocation_return_dbus_error(invocation, error, reason.c_str());
}

bool AwaitsArtwork(const PlayerState& state)
{
    const ipodkit::Track* const track = PlayingTrack(state);
    return track != nullptr && track->HasArtwork() && !state.artwork;
}
}  // namespace

std::string ArtworkDirectory()
{
    return std::string(g_get_user_runtime_dir()) + "/ipod-companiond";
}

Player::Player(GDBusConnection* connection, ipodkit::Session& session, Counters& counters)
    : BusObject(connection, kMprisPath, const_cast<GDBusInterfaceInfo*>(&org_mpris_media_player2_player_interface)),
      m_session(session),
      m_counters(counters),
      m_state(session.State()),
      m_key(KeyOf(*m_state))
{
    Show();
}

Player::~Player()
{
    if (m_timer != 0) g_source_remove(m_timer);
}

// Announces each track before the next one, no matter how quickly tracks change.
void Player::Follow(const ipodkit::StatePtr& state)
{
    TrackKey key = KeyOf(*state);
    if (key != m_key)
        BeginTrack(std::move(key));
    else
        ReportJump(*state);
    m_state = state;
    Schedule();
}

void Player::BeginTrack(TrackKey key)
{
    if (m_trackIsNew) Show();
    m_picture.reset();  // another program may have removed its file
    m_artUrl.clear();
    m_key = std::move(key);
    ++m_track;
    m_seeking = Seeking::None;
    m_trackIsNew = true;
    m_trackSince = Clock::now();
}

void Player::ReportJump(const PlayerState& next)
{
    if (PlayingTrack(next) == nullptr || !m_state->position || !next.position) return;
    if (next.position == m_state->position) return;
    const milliseconds deviation = next.position->position - m_state->position->At(next.position->at);
    if (std::chrono::abs(deviation) >= kJump || m_seeking == Seeking::Done) return EmitSeeked(next.position->position);
    if (m_seeking == Seeking::Requested) m_seeking = Seeking::Reported;
}

// The service may report the new position before or after it answers, and the next regular one if it refuses.
void Player::SeekAnswered(bool accepted)
{
    if (accepted && m_seeking == Seeking::Reported) return EmitSeeked(Position());
    const bool awaitsPosition = accepted && m_seeking == Seeking::Requested;
    m_seeking = awaitsPosition ? Seeking::Done : Seeking::None;
}

void Player::EmitSeeked(microseconds position)
{
    m_seeking = Seeking::None;
    Emit("Seeked", g_variant_new("(x)", static_cast<gint64>(position.count())));
}

void Player::Schedule()
{
    const Clock::time_point now = Clock::now();
    if (m_timer == 0)
        m_changedSince = now;
    else
        g_source_remove(m_timer);
    const bool waits = m_trackIsNew && AwaitsArtwork(*m_state);
    const auto due = waits ? m_trackSince + kArtworkWithin : m_changedSince + kSettle;
    const auto left = std::chrono::ceil<milliseconds>(std::max(due - now, Clock::duration(0)));
    const auto expired = [](gpointer self)
    {
        static_cast<Player*>(self)->m_timer = 0;
        static_cast<Player*>(self)->Show();
        return G_SOURCE_REMOVE;
    };
    m_timer = g_timeout_add(static_cast<guint>(left.count()), expired, this);
}

void Player::Show()
{
    m_trackIsNew = false;
    Publish(PlayerProperties(*m_state, TrackId(), ArtUrl()));
}

std::string Player::TrackId() const
{
    return "/com/zarn/linux/ipod/track/" + std::to_string(m_track);
}

std::string Player::ArtUrl()
{
    const ipodkit::PicturePtr picture = m_state->Artwork();
    if (picture == m_picture) return m_artUrl;
    m_picture = picture;
    const bool isImage = picture != nullptr && picture->type != ipodkit::PictureType::Unknown;
    m_artUrl = isImage ? m_files.Uri(*picture).value_or("") : "";
    return m_artUrl;
}

microseconds Player::Position() const
{
    if (PlayingTrack(*m_state) == nullptr || !m_state->position) return {};
    return m_state->position->Now();
}

GVariant* Player::Compute(const std::string& property) const
{
    return property == "Position" ? g_variant_new_int64(Position().count()) : nullptr;
}

std::string Player::WhyAbsent(const std::string& property) const
{
    return property + " is unknown: the service does not report it";
}

void Player::Call(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation)
{
    static const std::map<std::string, Method> methods{
        {"Next", &Player::Next},       {"Previous", &Player::Previous},
        {"Play", &Player::Play},       {"Pause", &Player::Pause},
        {"Stop", &Player::Stop},       {"PlayPause", &Player::PlayPause},
        {"Seek", &Player::Seek},       {"SetPosition", &Player::SetPosition},
        {"OpenUri", &Player::OpenUri},
    };
    (this->*methods.at(method))(arguments, invocation);
}

void Player::Set(const std::string& property, GVariant* value, GDBusMethodInvocation* invocation)
{
    static const std::map<std::string, Method> setters{
        {"LoopStatus", &Player::SetLoop},
        {"Shuffle", &Player::SetShuffle},
        {"Rate", &Player::SetRate},
        {"Volume", &Player::SetVolume},
    };
    const auto setter = setters.find(property);
    if (setter == setters.end()) return BusObject::Set(property, value, invocation);
    (this->*setter->second)(value, invocation);
}

// Methods that are not possible now have no effect, as MPRIS requires.
void Player::SendIf(bool possible, ipodkit::Request<void> request, GDBusMethodInvocation* invocation)
{
    if (!possible) return AnswerNothing(invocation);
    m_counters.Send(std::move(request), invocation);
}

void Player::Next(GVariant*, GDBusMethodInvocation* invocation)
{
    SendIf(CanGoNext(*m_state), Commands().Next(), invocation);
}

void Player::Previous(GVariant*, GDBusMethodInvocation* invocation)
{
    SendIf(CanGoPrevious(*m_state), Commands().Previous(), invocation);
}

void Player::Play(GVariant*, GDBusMethodInvocation* invocation)
{
    using ipodkit::PlayOption;
    const bool paused = m_state->status == ipodkit::PlayStatus::Paused;
    const bool possible = CanPlay(*m_state) && m_state->status != ipodkit::PlayStatus::Playing;
    SendIf(possible, Commands().StartPlayback(paused ? PlayOption::Resume : PlayOption::Start), invocation);
}

void Player::Pause(GVariant*, GDBusMethodInvocation* invocation)
{
    SendIf(CanPause(*m_state), Commands().Pause(), invocation);
}

void Player::PlayPause(GVariant*, GDBusMethodInvocation* invocation)
{
    const bool playing = PlaybackStatus(*m_state) == std::string("Playing");
    if (!(playing ? CanPause(*m_state) : CanPlay(*m_state)))
        return Refuse(invocation, kNotSupported, "nothing can be played now");
    if (playing) return Pause(nullptr, invocation);
    Play(nullptr, invocation);
}

void Player::Stop(GVariant*, GDBusMethodInvocation* invocation)
{
    m_counters.Send(Commands().Stop(), invocation);
}

// The service seeks to whole seconds. Seeking to the end would start the next track.
void Player::SeekTo(microseconds position, GDBusMethodInvocation* invocation)
{
    using std::chrono::seconds;
    const seconds last = std::chrono::ceil<seconds>(LengthOf(*m_state)) - seconds(1);
    const seconds target = std::max(std::min(std::chrono::round<seconds>(position), last), seconds(0));
    if (!CanSeek(*m_state)) return AnswerNothing(invocation);
    m_seeking = Seeking::Requested;
    m_counters.Send(Commands().Seek(target), invocation,
                    [player = std::weak_ptr(m_alive)](bool accepted)
                    {
                        if (const auto alive = player.lock()) (*alive)->SeekAnswered(accepted);
                    });
}

void Player::Seek(GVariant* arguments, GDBusMethodInvocation* invocation)
{
    constexpr gint64 kFar = microseconds(std::chrono::hours(24 * 24)).count();
    gint64 offset = 0;
    g_variant_get(arguments, "(x)", &offset);
    const microseconds target = Position() + microseconds(std::clamp(offset, -kFar, kFar));
    if (CanSeek(*m_state) && target > LengthOf(*m_state)) return Next(nullptr, invocation);
    SeekTo(target, invocation);
}

// Ignores a position in the previous track, which has just ended.
void Player::SetPosition(GVariant* arguments, GDBusMethodInvocation* invocation)
{
    const gchar* track = nullptr;
    gint64 position = 0;
    g_variant_get(arguments, "(&ox)", &track, &position);
    const bool valid = TrackId() == track && position >= 0 && microseconds(position) <= LengthOf(*m_state);
    if (!valid) return AnswerNothing(invocation);
    SeekTo(microseconds(position), invocation);
}

void Player::OpenUri(GVariant*, GDBusMethodInvocation* invocation)
{
    Refuse(invocation, kNotSupported, "the device plays its own music only");
}

void Player::SetLoop(GVariant* value, GDBusMethodInvocation* invocation)
{
    const std::string status = g_variant_get_string(value, nullptr);
    const auto repeat = RepeatOf(status);
    if (!repeat)
        return Refuse(invocation, kInvalidArgs, "expected 'None', 'Track', or 'Playlist', got '" + status + "'");
    m_counters.Send(Commands().SetRepeat(*repeat), invocation);
}

// Shuffled albums count as shuffled.
void Player::SetShuffle(GVariant* value, GDBusMethodInvocation* invocation)
{
    using ipodkit::Shuffle;
    const bool wanted = g_variant_get_boolean(value) != FALSE;
    SendIf(IsShuffled(*m_state) != wanted, Commands().SetShuffle(wanted ? Shuffle::Songs : Shuffle::Off), invocation);
}

void Player::SetRate(GVariant* value, GDBusMethodInvocation* invocation)
{
    const double rate = g_variant_get_double(value);
    if (rate == 0) return Pause(nullptr, invocation);
    if (rate == 1) return AnswerNothing(invocation);
    Refuse(invocation, kNotSupported, "the device plays at its normal rate only");
}

void Player::SetVolume(GVariant* value, GDBusMethodInvocation* invocation)
{
    if (g_variant_get_double(value) == 1) return AnswerNothing(invocation);
    Refuse(invocation, kNotSupported, "the volume of the device's audio is always 1");
}
}  // namespace companion
