// The native module of the Python package `ipodkit`; the package itself adds asyncio support.
#include <QBXLog.h>
#include <pybind11/pybind11.h>

#include "bindings.h"

namespace
{
constexpr char kLogDoc[] =
    "Sets up the library's logging: \"LEVEL\" or \"LEVEL:FILE\", or the path of a zlog configuration where zlog is "
    "installed. Returns whether it succeeded.";

bool Log(const std::string& config)
{
    return QBX_LogInit(config.c_str()) == 1;
}
}  // namespace

PYBIND11_MODULE(_native, module)
{
    using namespace ipodkit::python;
    // Types report the exporting package as their module.
    const pybind11::object name = module.attr("__name__");
    module.attr("__name__") = "ipodkit";
    module.attr("__version__") = IPODKIT_VERSION;
    module.def("log", Log, pybind11::arg("config"), kLogDoc);
    BindErrors(module);
    BindValues(module);
    BindState(module);
    BindRequest(module);
    BindCommands(module);
    BindContext(module);
    BindSharing(module);
    BindSession(module);
    BindPager(module);
    BindJumpIndex(module);
    BindPictureFiles(module);
    BindAudioSource(module);
    BindAccessory(module);
    module.attr("__name__") = name;
}
