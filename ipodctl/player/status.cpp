#include "player/status.h"

#include "output/names.h"
#include "player/phone.h"
#include "player/track.h"

namespace ctl
{
namespace
{
template <class T>
Json Named(const std::optional<T>& value, std::string (*nameOf)(int))
{
    return value ? Json(nameOf(*value)) : Json();
}

Json NumberOrNull(const std::optional<int>& value)
{
    return value ? Json(*value) : Json();
}

Json PictureJson(const ipodkit::PicturePtr& picture)
{
    if (picture == nullptr) return {};
    return {{"type", MediaType(picture->type)},
            {"bytes", picture->bytes.size()},
            {"width", picture->width},
            {"height", picture->height}};
}

Json CallsJson(const ipodkit::PlayerState& state)
{
    Json calls = Json::array();
    for (const auto& [uuid, call] : state.calls) calls.push_back(CallJson(call));
    return calls;
}

Json NearJson(const Status& status)
{
    if (!status.nearRefusal.empty()) return {};
    Json near = Json::array();
    for (std::size_t i = 0; i < status.near.size(); ++i)
        near.push_back({{"index", status.firstNear + static_cast<int>(i)}, {"name", status.near[i]}});
    return near;
}
}  // namespace

bool HasTrack(const Status& status)
{
    return status.state->track && !IsEmpty(*status.state->track);
}

Json StatusJson(const Status& status)
{
    const ipodkit::PlayerState& state = *status.state;
    Json json{{"state", Named(state.status, PlayStatusName)},
              {"position_ms", state.position ? Json(status.position) : Json()},
              {"length_ms", state.position ? Json(status.length) : Json()},
              {"index", NumberOrNull(state.trackIndex)},
              {"count", NumberOrNull(state.queueSize)},
              {"track", HasTrack(status) ? TrackJson(*state.track) : Json()},
              {"shuffle", Named(state.shuffle, ShuffleName)},
              {"repeat", Named(state.repeat, RepeatName)},
              {"devices", NumberOrNull(state.deviceCount)}};
    json["device"] = state.deviceName ? Json(*state.deviceName) : Json();
    json["app"] = state.foregroundApp && !state.foregroundApp->empty() ? Json(*state.foregroundApp) : Json();
    json["carplay"] = state.carPlay ? Json(DetectName(state.carPlay->status)) : Json();
    json["carlife"] = Named(state.carLife, DetectName);
    json["picture"] = PictureJson(state.artwork);
    json["battery"] = BatteryJson(state.battery);
    json["calls"] = CallsJson(state);
    json["queue"] = NearJson(status);
    return json;
}
}  // namespace ctl
