#include "player/player.h"

#include <ipodkit/audio_source.h>

#include <algorithm>
#include <iterator>

#include "output/failure.h"
#include "output/fields_json.h"
#include "output/text.h"
#include "picture/picture.h"
#include "player/lists.h"

namespace ctl
{
std::string TrackLine(const ipodkit::Track& track)
{
    const std::string title = track.title.empty() ? "(no title)" : Printable(track.title);
    return track.artist.empty() ? title : title + " - " + Printable(track.artist);
}

bool IsEmpty(const ipodkit::Track& track)
{
    return track.title.empty() && track.artist.empty() && track.album.empty() && track.duration.count() == 0;
}

std::string PictureLine(const ipodkit::Picture& picture)
{
    const bool sized = IsSize(picture.width, picture.height);
    return std::string(MediaType(picture.type)) + ", " +
           Count(static_cast<int>(picture.bytes.size()), "byte", "bytes") +
           (sized ? ", " + std::to_string(picture.width) + " x " + std::to_string(picture.height) : "") +
           (IsWhole(picture.type, picture.bytes) ? "" : ", incomplete");
}

std::string ArtworkLine(const ipodkit::ArtworkChanged& artwork)
{
    if (artwork.picture == nullptr) return "none";
    ipodkit::Picture picture = *artwork.picture;
    picture.width = artwork.width;
    picture.height = artwork.height;
    return PictureLine(picture);
}

void TakeAudioSource(Session& session)
{
    ipodkit::AudioSource source(session.Ready(), 0);
    const ipodkit::Result<void> granted = source.Request();
    if (!granted)
        throw Failure(kNothingDone, granted.error().reason,
                      "another audio source may have priority; try again when it has ended");
    source.Activated(0);
}

Answer AnswerWithPlaying(Context& context, const char* verb)
{
    Session& session = context.session;
    const ipodkit::Commands commands = session.Commands();
    Playing playing{};
    playing.state = session.Ask(commands.PlayStatus());
    playing.track = session.Ask(commands.CurrentTrack());
    if (!context.out.json()) return {{{"verb", verb}}, PlayingLine(playing)};
    playing.at = session.Ask(commands.Position());
    playing.index = session.Ask(commands.PlayingIndex());
    playing.amount = session.Ask(commands.PlayingCount());
    return ToAnswer(playing, verb);
}

Playing PlayingIn(const ipodkit::PlayerState& state)
{
    const ipodkit::Position at = state.position.value_or({});
    return {state.status.value_or({}),
            {at.Now(), at.duration},
            state.trackIndex.value_or(-1),
            state.queueSize.value_or(0),
            state.track.value_or({})};
}

Json PlayingJson(const Playing& playing)
{
    return {
        {"state", ToString(playing.state)},         {"position_ms", ToJson(playing.at.position)},
        {"length_ms", ToJson(playing.at.duration)}, {"index", playing.index},
        {"count", std::max(0, playing.amount)},     {"track", IsEmpty(playing.track) ? Json() : ToJson(playing.track)}};
}

std::string PlayingLine(const Playing& playing)
{
    const std::string state = ToString(playing.state);
    return IsEmpty(playing.track) ? state : state + ": " + TrackLine(playing.track);
}

Answer ToAnswer(const Playing& playing, const char* verb)
{
    Json json{{"verb", verb}};
    json.update(PlayingJson(playing));
    return {json, PlayingLine(playing)};
}

void AskOfTrack(Session& session, ipodkit::Request<void> request, const Refusal& refusal)
{
    ipodkit::Result<void> done = std::move(request).Wait();
    const bool refused = !done && done.error().kind == ipodkit::ErrorKind::Refused && done.error().name.empty();
    if (refused) RequireTrack(*session.Ready().State());
    session.ValueOf(std::move(done), refusal);
}

void RefuseNothingLoaded()
{
    throw Failure(kNothingDone, "nothing is loaded", "start with 'ipodctl play INDEX'");
}

Playing RequireTrack(const ipodkit::PlayerState& state)
{
    RequireTrackReported(state);
    Playing playing = PlayingIn(state);
    if (playing.index < 0 || IsEmpty(playing.track)) RefuseNothingLoaded();
    return playing;
}

namespace
{
using ipodkit::Error;
using ipodkit::ErrorKind;
using ipodkit::Field;
using ipodkit::PlayerState;

struct Expected
{
    Field field;
    const char* what;
};

// The last kInconclusive fields do not prove that the service works: any text is a valid name, and events report the
// position and detections.
constexpr int kInconclusive = 6;
constexpr Expected kAll[] = {
    {Field::Track, "the track"},         {Field::TrackIndex, "its index"},
    {Field::Status, "the state"},        {Field::Shuffle, "shuffle"},
    {Field::Repeat, "repeat"},           {Field::QueueSize, "the queue"},
    {Field::DeviceCount, "the devices"}, {Field::DeviceName, "the device name"},
    {Field::ForegroundApp, "the app"},   {Field::CarPlay, "CarPlay"},
    {Field::CarLife, "CarLife"},         {Field::Position, "the position"},
    {Field::Artwork, "the artwork"},
};

// Announced artwork that did not arrive counts as not reported.
bool IsReported(const PlayerState& state, Field field)
{
    const bool lacksArtwork = state.Artwork() == nullptr && state.track && state.track->HasArtwork();
    return field == Field::Artwork ? !lacksArtwork : !state.Why(field);
}

Error WhyNot(const PlayerState& state, Field field)
{
    const Error* cause = nullptr;
    ipodkit::ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            if constexpr (ipodkit::kIsKnown<ipodkit::FieldType<PlayerState, std::decay_t<decltype(row)>>>)
                if (row.field == field) cause = (state.*row.get).Cause();
        });
    if (cause != nullptr) return *cause;
    const auto why = state.Why(field);
    if (why == ipodkit::Unknown::TimedOut) return {ErrorKind::TimedOut, "no answer within the deadline"};
    return {ErrorKind::Refused, why ? ToString(*why) : "it did not deliver an image"};
}

// Returns false if the service reports that no device is attached; other fields are then not expected.
bool HasDevice(const PlayerState& state)
{
    return state.deviceCount.value_or(-1) != 0;
}
}  // namespace

std::string NotReported(const PlayerState& state)
{
    const auto isReported = [&state](const Expected& each) { return IsReported(state, each.field); };
    const auto* const first = std::find_if_not(std::begin(kAll), std::end(kAll), isReported);
    if (first == std::end(kAll) || !HasDevice(state)) return {};
    if (std::none_of(std::begin(kAll), std::prev(std::end(kAll), kInconclusive), isReported))
        throw ToFailure(WhyNot(state, first->field));
    Lines names;
    for (const Expected& each : kAll)
        if (!isReported(each)) names.emplace_back(each.what);
    return "the service did not report " + Joined(names, ", ") + ": " + ToFailure(WhyNot(state, first->field)).what();
}

void RequireTrackReported(const PlayerState& state)
{
    for (const Field field : {Field::Track, Field::TrackIndex})
        if (!IsReported(state, field) && HasDevice(state)) throw ToFailure(WhyNot(state, field));
}

namespace
{
Json CallsJson(const ipodkit::PlayerState& state)
{
    Json calls = Json::array();
    for (const auto& [uuid, call] : state.calls) calls.push_back(ToJson(call));
    return calls;
}

// Only events report these; ipod-companiond remembers them.
Json RememberedJson(const ipodkit::PlayerState& state)
{
    Json names = Json::array();
    for (const ipodkit::Field field : {ipodkit::Field::Battery, ipodkit::Field::Calls})
        if (state.remembered.Has(field)) names.push_back(Name(field));
    return names;
}

Json NearJson(const Status& status)
{
    return status.nearRefusal.empty() ? EntriesJson(status.firstNear, status.near) : Json();
}
}  // namespace

bool HasTrack(const Status& status)
{
    return status.state->track && !IsEmpty(*status.state->track);
}

Json StatusJson(const Status& status)
{
    const ipodkit::PlayerState& state = *status.state;
    Json json{{"state", ToJson(state.status)},
              {"position_ms", state.position ? Json(status.position) : Json()},
              {"length_ms", state.position ? Json(status.length) : Json()},
              {"index", ToJson(state.trackIndex)},
              {"count", ToJson(state.queueSize)},
              {"track", HasTrack(status) ? ToJson(state.track) : Json()},
              {"shuffle", ToJson(state.shuffle)},
              {"repeat", ToJson(state.repeat)},
              {"devices", ToJson(state.deviceCount)},
              {"device", ToJson(state.deviceName)}};
    const ipodkit::PicturePtr artwork = state.Artwork();
    json["app"] = state.foregroundApp.value_or("").empty() ? Json() : ToJson(state.foregroundApp);
    json["carplay"] = state.carPlay ? ToJson(state.carPlay->status) : Json();
    json["carlife"] = ToJson(state.carLife);
    json["picture"] = artwork == nullptr ? Json() : ToJson(*artwork);
    json["battery"] = ToJson(state.battery.value_or({}));
    json["calls"] = CallsJson(state);
    json["remembered"] = RememberedJson(state);
    json["queue"] = NearJson(status);
    return json;
}

namespace
{
// Returns the smallest page size with which one page holds all entries.
int SizeOfOnePage(int first, int end)
{
    int size = end - first;
    while (first / size != (end - 1) / size) ++size;
    return size;
}

// The list may change or the service may disappear during the read. This status then lacks the entries.
void ReadNear(Session& session, int end, Status& status)
{
    try
    {
        const int size = SizeOfOnePage(status.firstNear, end);
        status.near = List(session, ipodkit::ListKind::Playing, size).Names(status.firstNear, end, {});
    }
    catch (const Failure& failure)
    {
        status.nearRefusal = failure.what();
    }
}
}  // namespace

Status ReadStatus(Session& session, int near)
{
    Status status;
    status.state = session.Ready().State();
    const ipodkit::PlayerState& state = *status.state;
    if (state.position)
    {
        status.position = static_cast<int>(state.position->At(std::chrono::steady_clock::now()).count());
        status.length = static_cast<int>(state.position->duration.count());
    }
    const int playing = state.trackIndex.value_or(-1);
    const int amount = state.queueSize.value_or(0);
    if (near <= 0 || playing < 0 || playing >= amount) return status;
    status.firstNear = std::max(0, playing - near);
    ReadNear(session, std::min(amount, playing + near + 1), status);
    return status;
}
}  // namespace ctl
