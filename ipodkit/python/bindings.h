/// @file
/// Functions that bind the parts of the module, in the order of the calls.
#pragma once

#include <pybind11/pybind11.h>

namespace ipodkit::python
{
void BindErrors(pybind11::module_& module);
/// Binds the enumerations and value types.
void BindValues(pybind11::module_& module);
/// Binds PlayerState and its parts.
void BindState(pybind11::module_& module);
void BindRequest(pybind11::module_& module);
void BindCommands(pybind11::module_& module);
/// Binds a GLib main context that another event loop can run.
void BindContext(pybind11::module_& module);
/// Binds what Session.browse() needs, and the holders of locks.
void BindSharing(pybind11::module_& module);
void BindSession(pybind11::module_& module);
/// Binds Pager and its pages.
void BindPager(pybind11::module_& module);
void BindJumpIndex(pybind11::module_& module);
void BindPictureFiles(pybind11::module_& module);
void BindAudioSource(pybind11::module_& module);
/// Binds AccessoryPort and its sessions.
void BindAccessory(pybind11::module_& module);
}  // namespace ipodkit::python
