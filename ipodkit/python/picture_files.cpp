#include <ipodkit/picture_files.h>

#include "bindings.h"
#include "errors.h"
#include "rows.h"

namespace ipodkit::python
{
namespace
{
std::string Uri(const PictureFiles& files, const Picture& picture)
{
    const auto uri = [&]
    {
        const py::gil_scoped_release others;
        return files.Uri(picture);
    }();
    if (!uri) Raise(uri.error());
    return *uri;
}
}  // namespace

void BindPictureFiles(py::module_& module)
{
    py::class_<PictureFiles>(module, "PictureFiles",
                             "Stores pictures as files. Any thread may use it; it blocks for file access.")
        .def(py::init<std::string, std::size_t>(), py::arg("directory") = "", py::arg("keep") = 32,
             "directory: created if missing; by default \"ipodkit\" in the user's runtime directory. keep: how many "
             "pictures to keep, the most recently returned ones; 0 counts as 1.")
        .def("uri", Uri, py::arg("picture"),
             "The address of the picture's file, \"file:///...\". Raises NoStorage, an OSError.")
        .def_property_readonly(
            "directory", [](const PictureFiles& files) { return ToObject(files.Directory()); },
            "Absolute path of the directory.");
}
}  // namespace ipodkit::python
