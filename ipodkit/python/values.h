/// @file
/// The values of the companion as Python sees them.
#pragma once

#include <ipodkit/player_state.h>
#include <pybind11/pybind11.h>

#include <optional>
#include <string>

namespace ipodkit::python
{
namespace py = pybind11;

/// What repr() answers: the values in place of the braces of @p form, as by Python's str.format().
template <class... Values>
py::str Described(const char* form, const Values&... values)
{
    return py::str(form).format(values...);
}

/// The name of an enumeration's value, or its number when it has none; None when it is absent.
template <class T>
py::object NameOf(const std::optional<T>& value)
{
    if (!value) return py::none();
    const py::object known = py::cast(*value);
    return known.attr("name").is_none() ? known.attr("value") : known.attr("name");
}

/// Lets values print as "<Shuffle.OFF: 0>", or "<Shuffle: 77>" when they have no name, which is None then.
void PrintNumbersWithoutName(const py::object& enumeration);

/// An enumeration of which the service may send any number.
template <class T>
py::enum_<T> Enumeration(py::module_& module, const char* name, const char* doc = "")
{
    py::enum_<T> type(module, name, doc);
    PrintNumbersWithoutName(type);
    return type;
}

/// "FAST_FORWARD" for "fast-forward" and for "fast_forward".
std::string ConstantName(std::string name);

py::object ToPython(const StatePtr& state);

/// A frozenset of Field, and any iterable of them; None stands for all.
py::object ToPython(Fields fields);
Fields ToFields(const py::object& fields);
}  // namespace ipodkit::python
