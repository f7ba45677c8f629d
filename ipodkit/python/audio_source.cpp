#include <ipodkit/audio_source.h>

#include "bindings.h"
#include "rows.h"
#include "session_handle.h"

namespace ipodkit::python
{
namespace
{
constexpr char kSourceDoc[] =
    "One of the head unit's two iPod audio sources, 0 or 1, from request to release. Use it on the "
    "thread of the session's loop. Report the audio-source manager's decisions by calling activated() and "
    "deactivated().";

Owned<AudioSource> OpenSource(const SessionHandle& session, int number)
{
    return Owned<AudioSource>(new AudioSource(session.Get(), number));
}

void Ask(AudioSource& source)
{
    const Result<void> result = [&]
    {
        const py::gil_scoped_release others;
        return source.Request();
    }();
    if (!result) Raise(result.error());
}

void BindTransition(py::module_& module)
{
    py::enum_<AudioState>(module, "AudioState")
        .value("RELEASED", AudioState::Released, "Not granted to this application.")
        .value("GRANTED", AudioState::Granted, "Granted by the manager, not active yet.")
        .value("ACTIVE", AudioState::Active, "Active: playback may start.")
        .value("PLAYING", AudioState::Playing, "Playback was started.")
        .value("SUSPENDED", AudioState::Suspended, "Playing, but the manager deactivated the source temporarily.");
    py::class_<AudioTransition>(module, "AudioTransition", "A change of an AudioSource's state.")
        .def_readonly("before", &AudioTransition::from, "The state before.")
        .def_readonly("after", &AudioTransition::to, "The state after.")
        .def_readonly("why", &AudioTransition::why, "The reason, for logs.");
}
}  // namespace

void BindAudioSource(py::module_& module)
{
    using Unlock = py::call_guard<py::gil_scoped_release>;
    BindTransition(module);
    py::class_<AudioSource, Owned<AudioSource>>(module, "AudioSource", kSourceDoc)
        .def(py::init(&OpenSource), py::arg("session"), py::arg("number"))
        .def_property_readonly("state", &AudioSource::State, "The current AudioState.")
        .def("request", Ask,
             "Requests the source from the manager. Raises Refused with its code, NoService if the session has never "
             "been ready, and BadArgument for a number other than 0 and 1.")
        .def(
            "activated", &AudioSource::Activated, py::arg("confirmation"), Unlock(),
            "Report that the manager activated the source. confirmation: the manager's value, which is returned to it.")
        .def("deactivated", &AudioSource::Deactivated, py::arg("confirmation"), py::arg("for_a_while"), Unlock(),
             "Report that the manager deactivated the source. for_a_while: it will reactivate the source by itself.")
        .def("play", Requesting(&AudioSource::Play), KeepsPart(), py::arg("option") = PlayOption::Start,
             "Starts playback. Raises Refused unless the source is active when the request starts.")
        .def("release", &AudioSource::Release, Unlock(), "Releases the source to the manager.")
        .def("trace", &AudioSource::Trace, "The last transitions, at most 64, oldest first.")
        .def("on_transition", Subscribing(&AudioSource::OnTransition), py::arg("name"), py::arg("callback"),
             "Calls callback(transition) for each AudioTransition.");
}
}  // namespace ipodkit::python
