/// @file
/// Warnings of objects that were dropped before their time, as Python gives them for files that nobody closed.
#pragma once

#include <pybind11/pybind11.h>

namespace ipodkit::python
{
/// Issues a ResourceWarning, under the interpreter's lock. For destructors: where warnings are errors it goes to
/// sys.unraisablehook.
inline void WarnOfDropped(const char* what)
{
    if (PyErr_ResourceWarning(nullptr, 1, "%s", what) != 0) PyErr_WriteUnraisable(nullptr);
}
}  // namespace ipodkit::python
