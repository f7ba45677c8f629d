#include "player/status.h"

#include "output/fields_json.h"
#include "player/track.h"

namespace ctl
{
namespace
{
Json CallsJson(const ipodkit::PlayerState& state)
{
    Json calls = Json::array();
    for (const auto& [uuid, call] : state.calls) calls.push_back(ToJson(call));
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
    json["queue"] = NearJson(status);
    return json;
}
}  // namespace ctl
