// The Python module `ipodkit`: session, state and commands, for programs that run GLib's main loop through python3-gi.
#include <QBXLog.h>
#include <pybind11/pybind11.h>

#include "bindings.h"

namespace
{
constexpr char kModuleDoc[] = R"(Control an attached Apple device and learn of its state.

    session = ipodkit.Session()
    shown = session.on_state("now playing", lambda state, changed: print(state.track.title if state.track else "-"))
    session.commands.next().start(lambda value, error: print(error or "done"))
    GLib.MainLoop().run()

Callbacks run in GLib's default main context. What they raise goes to sys.unraisablehook, a KeyboardInterrupt to the
program that runs the loop. A subscription lasts as long as its object.)";

constexpr char kLogDoc[] =
    "Sets the logging of the library up: \"LEVEL\" or \"LEVEL:FILE\", or the path of a configuration where zlog is "
    "installed. Returns whether it could.";

bool Log(const std::string& config)
{
    return QBX_LogInit(config.c_str()) == 1;
}
}  // namespace

PYBIND11_MODULE(ipodkit, module)
{
    using namespace ipodkit::python;
    module.doc() = kModuleDoc;
    module.attr("__version__") = IPODKIT_VERSION;
    module.def("log", Log, pybind11::arg("config"), kLogDoc);
    BindErrors(module);
    BindValues(module);
    BindState(module);
    BindRequest(module);
    BindCommands(module);
    BindSession(module);
}
