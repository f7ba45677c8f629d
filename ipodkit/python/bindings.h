/// @file
/// The parts of the module, in the order in which they are added to it.
#pragma once

#include <pybind11/pybind11.h>

namespace ipodkit::python
{
void BindErrors(pybind11::module_& module);
/// Enumerations and values of the device.
void BindValues(pybind11::module_& module);
/// PlayerState and its parts.
void BindState(pybind11::module_& module);
void BindRequest(pybind11::module_& module);
void BindCommands(pybind11::module_& module);
/// A GLib main context that another loop can run.
void BindContext(pybind11::module_& module);
void BindSession(pybind11::module_& module);
/// Pager and its pages.
void BindPager(pybind11::module_& module);
void BindJumpIndex(pybind11::module_& module);
void BindPictureFiles(pybind11::module_& module);
void BindAudioSource(pybind11::module_& module);
/// AccessoryPort and its sessions.
void BindAccessory(pybind11::module_& module);
}  // namespace ipodkit::python
