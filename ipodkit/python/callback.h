/// @file
/// Python's callables as callbacks of the companion.
#pragma once

#include <pybind11/pybind11.h>

#include <csignal>
#include <memory>
#include <string>
#include <utility>

namespace ipodkit::python
{
namespace py = pybind11;

/// Raises KeyboardInterrupt where the main thread goes on in Python. False when the program does not handle SIGINT in
/// Python: nothing would raise it then.
inline bool InterruptMainThread()
{
    const py::object handler = py::module_::import("signal").attr("getsignal")(SIGINT);
    if (PyCallable_Check(handler.ptr()) == 0) return false;
    PyErr_SetInterrupt();
    return true;
}

/// May be called, copied and destroyed with and without the interpreter's lock. What the callable raises goes to
/// sys.unraisablehook, under the callback's name; a KeyboardInterrupt goes to the program, which runs the loop.
class Callback
{
public:
    Callback(std::string name, py::function callable)
        : m_name(std::move(name)), m_callable(new py::function(std::move(callable)), Release)
    {
    }

    /// @p arguments makes the tuple of arguments, under the lock.
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
    // Nothing can be let go once the interpreter has ended.
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
