#include <ipodkit/sharing.h>

#include "bindings.h"
#include "rows.h"

namespace ipodkit::python
{
namespace
{
constexpr char kLeaseDoc[] =
    "The right to browse the database, from Session.browse(): a context manager, for `with` and `async with`. All "
    "leases of the same kind in a process share the right; it ends with the last one.";
constexpr char kHoldersDoc[] =
    "The processes that hold a lock now, as far as this user may see: a list of LockHolder. Reads /proc, which blocks "
    "for milliseconds; needs no session.";

std::vector<LockHolder> Holders()
{
    const py::gil_scoped_release others;
    return LockHolders();
}

void Release(BrowseLease& lease)
{
    lease = BrowseLease(nullptr);
}

void BindLease(py::module_& module)
{
    py::class_<BrowseLease>(module, "BrowseLease", kLeaseDoc)
        .def("release", Release, "Ends this lease, once; the end of `with` and garbage collection do so too.")
        .def("__enter__", [](py::object self) { return self; })
        .def("__exit__", [](BrowseLease& lease, const py::args&) { Release(lease); });
}
}  // namespace

void BindSharing(py::module_& module)
{
    py::enum_<Browsing>(module, "Browsing",
                        "READING keeps the level as it is; any number of applications may read at a time. With "
                        "CHANGING, no other application changes the level; others may read it between two changes.")
        .value("READING", Browsing::Reading)
        .value("CHANGING", Browsing::Changing);
    BindLease(module);
    py::class_<LockHolder>(module, "LockHolder", "A process that holds a lock.")
        .def_readonly("what", &LockHolder::what, R"(Name of the locked vector, or "level", or "browse".)")
        .def_readonly("process", &LockHolder::process, "Number of the process.")
        .def_property_readonly(
            "program", [](const LockHolder& holder) { return ToObject(holder.program); },
            "Name of its program; empty when it has ended.");
    module.def("lock_holders", Holders, kHoldersDoc);
}
}  // namespace ipodkit::python
