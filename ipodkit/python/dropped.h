/// @file
/// Warns about objects that were dropped too early, as Python does for unclosed files.
#pragma once

#include <pybind11/pybind11.h>

namespace ipodkit::python
{
/// Issues a ResourceWarning; the caller holds the GIL. Safe in destructors: if warnings are errors, the exception
/// goes to sys.unraisablehook.
inline void WarnOfDropped(const char* what)
{
    if (PyErr_ResourceWarning(nullptr, 1, "%s", what) != 0) PyErr_WriteUnraisable(nullptr);
}
}  // namespace ipodkit::python
