/// @file
#pragma once

#include <pybind11/pybind11.h>

namespace ipodkit::python
{
/// After BindRequest() and BindValues().
void BindCommands(pybind11::module_& module);
}  // namespace ipodkit::python
