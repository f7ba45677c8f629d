/// @file
/// Converts values of ipodkit to Python.
#pragma once

#include <ipodkit/player_state.h>
#include <pybind11/pybind11.h>

#include <optional>
#include <string>

namespace ipodkit::python
{
namespace py = pybind11;

/// Formats @p values with Python's str.format(), for use in repr().
template <class... Values>
py::str Described(const char* form, const Values&... values)
{
    return py::str(form).format(values...);
}

/// Returns the name of an enumeration value, its number if it has no name, or None if it is absent.
template <class T>
py::object NameOf(const std::optional<T>& value)
{
    if (!value) return py::none();
    const py::object known = py::cast(*value);
    return known.attr("name").is_none() ? known.attr("value") : known.attr("name");
}

/// Makes values print as "<Shuffle.OFF: 0>". A value without a name prints as "<Shuffle: 77>"; its name is None.
void PrintNumbersWithoutName(const py::object& enumeration);

/// Binds an enumeration that accepts any number, because the service may send one without a name.
template <class T>
py::enum_<T> Enumeration(py::module_& module, const char* name, const char* doc = "")
{
    py::enum_<T> type(module, name, doc);
    PrintNumbersWithoutName(type);
    return type;
}

/// Returns "FAST_FORWARD" for "fast-forward" and for "fast_forward".
std::string ConstantName(std::string name);

py::object ToPython(const StatePtr& state);

/// Converts to a frozenset of Field, and from any iterable of Field; None means all fields.
py::object ToPython(Fields fields);
Fields ToFields(const py::object& fields);
}  // namespace ipodkit::python
