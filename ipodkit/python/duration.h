/// @file
/// Converts Python durations: a number of seconds, or a timedelta.
#pragma once

#include <pybind11/pybind11.h>

#include <chrono>
#include <cmath>

namespace ipodkit::python
{
inline std::chrono::milliseconds ToMilliseconds(const pybind11::object& duration)
{
    const bool isTimedelta = pybind11::hasattr(duration, "total_seconds");
    const pybind11::object seconds = isTimedelta ? duration.attr("total_seconds")() : duration;
    const double number = PyFloat_AsDouble(seconds.ptr());
    if (PyErr_Occurred() != nullptr) throw pybind11::error_already_set();
    constexpr double kMost = 1e9;
    if (!(std::abs(number) <= kMost)) throw pybind11::value_error("expected a number of seconds, or a timedelta");
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(number));
}
}  // namespace ipodkit::python
