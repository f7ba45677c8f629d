/// @file
/// The values of the companion as Python sees them.
#pragma once

#include <ipodkit/player_state.h>
#include <pybind11/pybind11.h>

#include <optional>

namespace ipodkit::python
{
namespace py = pybind11;

/// What repr() answers: the values in place of the braces of @p form, as by Python's str.format().
template <class... Values>
py::str Described(const char* form, const Values&... values)
{
    return py::str(form).format(values...);
}

/// The name of an enumeration's value; None when it is absent.
template <class Enumeration>
py::object NameOf(const std::optional<Enumeration>& value)
{
    return value ? py::object(py::cast(*value).attr("name")) : py::none();
}

py::object ToPython(const StatePtr& state);

/// A frozenset of Field, and any iterable of them; None stands for all.
py::object ToPython(Fields fields);
Fields ToFields(const py::object& fields);
}  // namespace ipodkit::python
