#include "player_properties.h"

#include <ipodkit/variant.h>

#include <algorithm>
#include <array>

namespace companion
{
namespace
{
using ipodkit::PlayerState;
using ipodkit::PlayStatus;
using ipodkit::Repeat;
using ipodkit::Track;

constexpr std::array<const char*, 3> kLoopStatus{"None", "Track", "Playlist"};  // by Repeat

bool IsReady(const PlayerState& state)
{
    return state.phase == ipodkit::Phase::Ready;
}

// A repeated list has no ends, and only the service knows those of a shuffled one.
bool HasNoEnds(const PlayerState& state)
{
    return state.repeat.value_or(Repeat::Off) != Repeat::Off ||
           state.shuffle.value_or(ipodkit::Shuffle::Off) != ipodkit::Shuffle::Off;
}

class Metadata
{
public:
    Metadata() { g_variant_builder_init(&m_entries, G_VARIANT_TYPE_VARDICT); }

    void Add(const char* key, GVariant* value) { g_variant_builder_add(&m_entries, "{sv}", key, value); }

    void AddText(const char* key, const std::string& text)
    {
        if (!text.empty()) Add(key, ipodkit::ToVariant(text));
    }

    void AddList(const char* key, const std::string& text)
    {
        GVariant* entry = text.empty() ? nullptr : ipodkit::ToVariant(text);
        if (entry != nullptr) Add(key, g_variant_new_array(nullptr, &entry, 1));
    }

    Value End() { return Owned(g_variant_builder_end(&m_entries)); }

private:
    GVariantBuilder m_entries;
};

Value MetadataOf(const PlayerState& state, const std::string& trackId, const std::string& artUrl)
{
    Metadata metadata;
    const Track* const track = PlayingTrack(state);
    if (track == nullptr) return metadata.End();
    metadata.Add("mpris:trackid", g_variant_new_object_path(trackId.c_str()));
    const std::chrono::microseconds length = LengthOf(state);
    if (length.count() > 0) metadata.Add("mpris:length", g_variant_new_int64(length.count()));
    metadata.AddText("mpris:artUrl", artUrl);
    metadata.AddText("xesam:title", track->title);
    metadata.AddList("xesam:artist", track->artist);
    metadata.AddText("xesam:album", track->album);
    metadata.AddList("xesam:genre", track->genre);
    if (track->number > 0) metadata.Add("xesam:trackNumber", g_variant_new_int32(track->number));
    return metadata.End();
}

void AddModes(Values& values, const PlayerState& state)
{
    if (!IsReady(state)) return;
    const auto repeat = static_cast<std::size_t>(state.repeat.value_or(static_cast<Repeat>(-1)));
    if (repeat < kLoopStatus.size()) values["LoopStatus"] = Owned(g_variant_new_string(kLoopStatus[repeat]));
    if (const auto shuffled = IsShuffled(state))
        values["Shuffle"] = Owned(g_variant_new_boolean(*shuffled ? TRUE : FALSE));
}
}  // namespace

const Track* PlayingTrack(const PlayerState& state)
{
    const bool playing = IsReady(state) && state.track && state.trackIndex != -1;
    return playing ? &*state.track : nullptr;
}

TrackKey KeyOf(const PlayerState& state)
{
    const Track* const track = PlayingTrack(state);
    if (track == nullptr) return {-1, "", "", "", 0};
    return {state.trackIndex.value_or(0), track->title, track->artist, track->album, track->number};
}

std::chrono::milliseconds LengthOf(const PlayerState& state)
{
    const Track* const track = PlayingTrack(state);
    if (track == nullptr) return {};
    if (track->duration.count() > 0 || !state.position) return track->duration;
    return state.position->duration;
}

bool CanGoNext(const PlayerState& state)
{
    if (PlayingTrack(state) == nullptr) return false;
    return HasNoEnds(state) || state.trackIndex.value_or(0) + 1 < state.queueSize.value_or(0);
}

bool CanGoPrevious(const PlayerState& state)
{
    if (PlayingTrack(state) == nullptr) return false;
    return HasNoEnds(state) || state.trackIndex.value_or(0) > 0;
}

bool CanPlay(const PlayerState& state)
{
    return IsReady(state) && state.deviceCount.value_or(0) > 0;
}

bool CanPause(const PlayerState& state)
{
    return PlayingTrack(state) != nullptr;
}

bool CanSeek(const PlayerState& state)
{
    return LengthOf(state).count() > 0;
}

const char* PlaybackStatus(const PlayerState& state)
{
    const PlayStatus status = IsReady(state) ? state.status.value_or(PlayStatus::Stopped) : PlayStatus::Stopped;
    if (status == PlayStatus::Paused) return "Paused";
    const bool advances =
        status == PlayStatus::Playing || status == PlayStatus::FastForward || status == PlayStatus::FastBackward;
    return advances ? "Playing" : "Stopped";
}

std::optional<bool> IsShuffled(const PlayerState& state)
{
    using ipodkit::Shuffle;
    if (!state.shuffle || *state.shuffle < Shuffle::Off || *state.shuffle > Shuffle::Albums) return std::nullopt;
    return *state.shuffle != Shuffle::Off;
}

std::optional<Repeat> RepeatOf(std::string_view loopStatus)
{
    const auto* const found = std::find(kLoopStatus.begin(), kLoopStatus.end(), loopStatus);
    if (found == kLoopStatus.end()) return std::nullopt;
    return static_cast<Repeat>(found - kLoopStatus.begin());
}

// The volume is constant: the device's audio is passed on unchanged.
Values PlayerProperties(const PlayerState& state, const std::string& trackId, const std::string& artUrl)
{
    const Value one = Owned(g_variant_new_double(1));
    const auto boolean = [](bool value) { return Owned(g_variant_new_boolean(value ? TRUE : FALSE)); };
    Values values{{"PlaybackStatus", Owned(g_variant_new_string(PlaybackStatus(state)))},
                  {"Metadata", MetadataOf(state, trackId, artUrl)},
                  {"Rate", one},
                  {"MinimumRate", one},
                  {"MaximumRate", one},
                  {"Volume", one},
                  {"CanGoNext", boolean(CanGoNext(state))},
                  {"CanGoPrevious", boolean(CanGoPrevious(state))},
                  {"CanPlay", boolean(CanPlay(state))},
                  {"CanPause", boolean(CanPause(state))},
                  {"CanSeek", boolean(CanSeek(state))},
                  {"CanControl", boolean(true)}};
    AddModes(values, state);
    return values;
}
}  // namespace companion
