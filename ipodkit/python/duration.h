/// @file
/// Durations from Python: seconds as a number, or a timedelta.
#pragma once

#include <pybind11/pybind11.h>

#include <chrono>

namespace ipodkit::python
{
inline std::chrono::milliseconds ToMilliseconds(const pybind11::object& duration)
{
    const bool isTimedelta = pybind11::hasattr(duration, "total_seconds");
    const pybind11::object seconds = isTimedelta ? duration.attr("total_seconds")() : duration;
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds.cast<double>()));
}
}  // namespace ipodkit::python
