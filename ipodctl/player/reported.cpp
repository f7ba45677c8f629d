#include "player/reported.h"

#include <algorithm>
#include <iterator>

#include "output/failure.h"

namespace ctl
{
namespace
{
using ipodkit::Error;
using ipodkit::ErrorKind;
using ipodkit::Field;
using ipodkit::Fields;
using ipodkit::PlayerState;

struct Expected
{
    Field field;
    const char* what;
};

// The last ones do not show that the service answers sensibly: any text is a name, and events report the position and
// detections.
constexpr int kOfNoWeight = 6;
constexpr Expected kAll[] = {
    {Field::Track, "the track"},         {Field::TrackIndex, "its index"},
    {Field::Status, "the state"},        {Field::Shuffle, "shuffle"},
    {Field::Repeat, "repeat"},           {Field::QueueSize, "the queue"},
    {Field::DeviceCount, "the devices"}, {Field::DeviceName, "the device name"},
    {Field::ForegroundApp, "the app"},   {Field::CarPlay, "CarPlay"},
    {Field::CarLife, "CarLife"},         {Field::Position, "the position"},
    {Field::Artwork, "the artwork"},
};

// Artwork that was announced and did not arrive counts as not reported.
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

// Without a device there is nothing to report.
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
    const Failure failure = ToFailure(WhyNot(state, first->field));
    if (std::none_of(std::begin(kAll), std::prev(std::end(kAll), kOfNoWeight), isReported)) throw failure;
    std::string names;
    for (const Expected& each : kAll)
        if (!isReported(each)) names += (names.empty() ? "" : ", ") + std::string(each.what);
    return "the service did not report " + names + ": " + failure.what();
}

void RequireTrackReported(const PlayerState& state)
{
    for (const Field field : {Field::Track, Field::TrackIndex})
        if (!IsReported(state, field) && HasDevice(state)) throw ToFailure(WhyNot(state, field));
}
}  // namespace ctl
