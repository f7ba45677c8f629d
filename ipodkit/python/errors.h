/// @file
/// Converts errors to Python exceptions.
#pragma once

#include <ipodkit/error.h>
#include <pybind11/pybind11.h>

namespace ipodkit::python
{
namespace py = pybind11;

/// Returns an instance of ipodkit.Error.
py::object ToException(const Error& error);

/// Raises @p error as an ipodkit.Error.
[[noreturn]] void Raise(const Error& error);
}  // namespace ipodkit::python
