/// @file
#pragma once

#include <pybind11/pybind11.h>

namespace ipodkit::python
{
/// After everything else.
void BindSession(pybind11::module_& module);
}  // namespace ipodkit::python
