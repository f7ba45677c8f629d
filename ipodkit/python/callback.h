/// @file
/// Wraps Python callables as ipodkit callbacks.
#pragma once

#include <pybind11/pybind11.h>

#include <csignal>
#include <memory>
#include <string>
#include <utility>

namespace ipodkit::python
{
namespace py = pybind11;

/// Triggers the program's SIGINT handler when the main thread next runs Python code. Returns false if SIGINT has no
/// Python handler, because nothing would raise KeyboardInterrupt then.
inline bool InterruptMainThread()
{
    const py::object handler = py::module_::import("signal").attr("getsignal")(SIGINT);
    if (PyCallable_Check(handler.ptr()) == 0) return false;
    PyErr_SetInterrupt();
    return true;
}

/// Can be called, copied, and destroyed with or without the GIL. Exceptions of the callable go to sys.unraisablehook
/// under the callback's name. A KeyboardInterrupt interrupts the main thread instead, if SIGINT has a Python handler.
class Callback
{
public:
    Callback(std::string name, py::function callable)
        : m_name(std::move(name)), m_callable(new py::function(std::move(callable)), Release)
    {
    }

    /// Calls the callable with the tuple that @p arguments returns. Both run with the GIL held.
    template <class MakeArguments>
    void Call(const MakeArguments& arguments) const
    {
        const py::gil_scoped_acquire lock;
        try
        {
            (*m_callable)(*arguments());
        }
        catch (py::error_already_set& raised)
        {
            const bool interrupted = raised.matches(PyExc_KeyboardInterrupt) && InterruptMainThread();
            if (!interrupted) raised.discard_as_unraisable(m_name.c_str());
        }
    }

    const std::string& Name() const { return m_name; }

private:
    // Leaks the callable if the interpreter has been finalized.
    static void Release(py::function* callable)
    {
        if (Py_IsInitialized() == 0) return;
        const py::gil_scoped_acquire lock;
        delete callable;
    }

    std::string m_name;
    std::shared_ptr<py::function> m_callable;
};
}  // namespace ipodkit::python
