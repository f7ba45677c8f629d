#include <ipodkit/audio_source.h>

#include "bindings.h"
#include "rows.h"
#include "session_handle.h"

namespace ipodkit::python
{
namespace
{
constexpr char kSourceDoc[] =
    "The loudspeakers: one of the head unit's two iPod sources, 0 or 1, from the request to the release. Use it on the "
    "thread of the session's loop. The application reports what the audio-source manager did by activated() and "
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
        .value("RELEASED", AudioState::Released, "Somebody else's.")
        .value("GRANTED", AudioState::Granted, "Requested and granted, not active yet.")
        .value("ACTIVE", AudioState::Active, "May sound.")
        .value("PLAYING", AudioState::Playing, "Playback was started.")
        .value("SUSPENDED", AudioState::Suspended, "Was playing when the manager took the source away for a while.");
    py::class_<AudioTransition>(module, "AudioTransition", "A change of an AudioSource's state.")
        .def_readonly("before", &AudioTransition::from, "The state until then.")
        .def_readonly("after", &AudioTransition::to, "The state since then.")
        .def_readonly("why", &AudioTransition::why, "The reason, for logs.");
}
}  // namespace

void BindAudioSource(py::module_& module)
{
    using Unlock = py::call_guard<py::gil_scoped_release>;
    BindTransition(module);
    py::class_<AudioSource, Owned<AudioSource>>(module, "AudioSource", kSourceDoc)
        .def(py::init(&OpenSource), py::arg("session"), py::arg("number"))
        .def_property_readonly("state", &AudioSource::State, "The present AudioState.")
        .def("request", Ask,
             "Asks the manager for the source. Raises Refused with its code, NoService before the session was ready "
             "once, and BadArgument for a number other than 0 and 1.")
        .def("activated", &AudioSource::Activated, py::arg("confirmation"), Unlock(),
             "The manager activated the source. confirmation: the manager's value, which is returned to it.")
        .def("deactivated", &AudioSource::Deactivated, py::arg("confirmation"), py::arg("for_a_while"), Unlock(),
             "The manager took the source away. for_a_while: it will activate the source again by itself.")
        .def("play", Requesting(&AudioSource::Play), KeepsPart(), py::arg("option") = PlayOption::Start,
             "Starts playback. Refused unless the source is active when the request starts.")
        .def("release", &AudioSource::Release, Unlock(), "Gives the source back to the manager.")
        .def("trace", &AudioSource::Trace, "The last transitions, at most 64, oldest first.")
        .def("on_transition", Subscribing(&AudioSource::OnTransition), py::arg("name"), py::arg("callback"),
             "Calls callback(transition) for each AudioTransition.");
}
}  // namespace ipodkit::python
