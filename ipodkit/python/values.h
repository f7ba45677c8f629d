/// @file
/// The values of the companion as Python sees them.
#pragma once

#include <ipodkit/player_state.h>
#include <pybind11/pybind11.h>

namespace ipodkit::python
{
namespace py = pybind11;

py::object ToPython(const StatePtr& state);

/// A frozenset of Field, and any iterable of them; None stands for all.
py::object ToPython(Fields fields);
Fields ToFields(const py::object& fields);
}  // namespace ipodkit::python
