#include "context.h"

#include <pybind11/stl.h>

#include "bindings.h"

namespace ipodkit::python
{
std::pair<int, std::vector<Context::File>> Context::Query() const
{
    int priority = 0;
    int timeout = -1;
    std::vector<GPollFD> polled(16);
    g_main_context_acquire(Native());
    const bool ready = g_main_context_prepare(Native(), &priority) != FALSE;
    for (bool whole = false; !whole;)
    {
        const int room = static_cast<int>(polled.size());
        const int count = g_main_context_query(Native(), priority, &timeout, polled.data(), room);
        polled.resize(static_cast<std::size_t>(count));
        whole = count <= room;
    }
    g_main_context_release(Native());
    std::vector<File> files;
    for (const GPollFD& each : polled) files.emplace_back(each.fd, each.events);
    return {ready ? 0 : timeout, files};
}

void Context::Dispatch() const
{
    g_main_context_iteration(Native(), FALSE);
}

void BindContext(pybind11::module_& module)
{
    namespace py = pybind11;
    module.attr("_IN") = static_cast<int>(G_IO_IN);
    module.attr("_OUT") = static_cast<int>(G_IO_OUT);
    py::class_<Context, std::shared_ptr<Context>>(module, "_Context")
        .def(py::init<>())
        .def("query", &Context::Query)
        .def("dispatch", &Context::Dispatch, py::call_guard<py::gil_scoped_release>());
}
}  // namespace ipodkit::python
