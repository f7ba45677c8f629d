#include "bindings.h"

#include <ipodkit/commands.h>
#include <pybind11/stl.h>

#include "any_request.h"
#include "duration.h"

namespace ipodkit::python
{
namespace
{
using Class = py::class_<Commands>;
using RequestPtr = std::unique_ptr<AnyRequest>;

template <class T, class... Args>
auto Making(Request<T> (Commands::*make)(Args...) const)
{
    return [make](const Commands& commands, Args... args) { return Wrapped((commands.*make)(args...)); };
}

RequestPtr Seek(const Commands& commands, const py::object& position)
{
    return Wrapped(commands.Seek(std::chrono::duration_cast<std::chrono::seconds>(ToMilliseconds(position))));
}

RequestPtr PressButton(const Commands& commands, std::uint32_t button, bool pressed, std::uint32_t heldMilliseconds)
{
    return Wrapped(commands.PressButton({button, pressed ? 1U : 0U, std::chrono::milliseconds(heldMilliseconds)}));
}

RequestPtr AnnounceAccessory(const Commands& commands, const std::string& protocols, const std::string& bundleId)
{
    return Wrapped(commands.AnnounceAccessory({protocols, bundleId}));
}

void BindPlayback(Class& commands)
{
    commands.def("start_playback", Making(&Commands::StartPlayback), py::arg("option") = PlayOption::Start)
        .def("pause", Making(&Commands::Pause))
        .def("stop", Making(&Commands::Stop))
        .def("next", Making(&Commands::Next))
        .def("previous", Making(&Commands::Previous))
        .def("seek", Seek, py::arg("position"), "Seconds or a timedelta, truncated to whole seconds.")
        .def("fast_forward", Making(&Commands::FastForward))
        .def("fast_backward", Making(&Commands::FastBackward))
        .def("stop_winding", Making(&Commands::StopWinding))
        .def("set_shuffle", Making(&Commands::SetShuffle), py::arg("mode"))
        .def("set_repeat", Making(&Commands::SetRepeat), py::arg("mode"))
        .def("press_button", PressButton, py::arg("button"), py::arg("pressed"), py::arg("held_milliseconds") = 0)
        .def("set_transmission", Making(&Commands::SetTransmission), py::arg("on"));
}

void BindQuestions(Class& commands)
{
    commands.def("current_track", Making(&Commands::CurrentTrack))
        .def("play_status", Making(&Commands::PlayStatus))
        .def("position", Making(&Commands::Position))
        .def("winding_status", Making(&Commands::WindingStatus))
        .def("shuffle", Making(&Commands::Shuffle))
        .def("repeat", Making(&Commands::Repeat))
        .def("playing_index", Making(&Commands::PlayingIndex))
        .def("playing_count", Making(&Commands::PlayingCount))
        .def("artwork", Making(&Commands::Artwork),
             "The artwork of the playing track, of any size: an ArtworkChanged, whose available is False if there is "
             "none. "
             "Raises NoSharedMemory if the session has never been ready.");
}

void BindDatabase(Class& commands)
{
    commands.def("database_count", Making(&Commands::DatabaseCount), py::arg("from_top") = false)
        .def("enter_root", Making(&Commands::EnterRoot))
        .def("enter_parent", Making(&Commands::EnterParent))
        .def("enter_child", Making(&Commands::EnterChild), py::arg("index"))
        .def("at_root", Making(&Commands::AtRoot))
        .def("play_database_entry", Making(&Commands::PlayDatabaseEntry), py::arg("index"))
        .def("play_playing_entry", Making(&Commands::PlayPlayingEntry), py::arg("index"));
}

void BindDevices(Class& commands)
{
    commands.def("device_count", Making(&Commands::DeviceCount))
        .def("enter_device", Making(&Commands::EnterDevice), py::arg("index"))
        .def("ipod_name", Making(&Commands::IpodName))
        .def("foreground_app", Making(&Commands::ForegroundApp))
        .def("launch_app", Making(&Commands::LaunchApp), py::arg("bundle_id"))
        .def("carplay_status", Making(&Commands::CarPlayStatus))
        .def("carlife_status", Making(&Commands::CarLifeStatus))
        .def("notify_carplay", Making(&Commands::NotifyCarPlay), py::arg("connected"), py::arg("wireless"))
        .def("announce_accessory", AnnounceAccessory, py::arg("protocols"), py::arg("bundle_id"))
        .def("set_hub_test_mode", Making(&Commands::SetHubTestMode), py::arg("mode"));
}
}  // namespace

void BindCommands(py::module_& module)
{
    Class commands(module, "Commands", "One operation per member of the bus contract; each returns a Request.");
    BindPlayback(commands);
    BindQuestions(commands);
    BindDatabase(commands);
    BindDevices(commands);
}
}  // namespace ipodkit::python
