/// @file
/// Failures as Python sees them.
#pragma once

#include <ipodkit/error.h>
#include <pybind11/pybind11.h>

namespace ipodkit::python
{
namespace py = pybind11;

/// An instance of ipodkit.Error.
py::object ToException(const Error& error);

/// Raises it.
[[noreturn]] void Raise(const Error& error);
}  // namespace ipodkit::python
