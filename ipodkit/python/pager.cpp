#include <ipodkit/pager.h>

#include "bindings.h"
#include "rows.h"
#include "session_handle.h"

namespace ipodkit::python
{
namespace
{
constexpr char kPagerDoc[] =
    "Random access to one list of the device, page by page; pages are never stale. Create and use it on the thread "
    "of the session's loop. Requests fail with BadArgument, a ValueError, for entries that do not exist, and with "
    "Cancelled when the list changes.";

Owned<Pager> OpenPager(const SessionHandle& session, ListKind kind, int pageSize, std::size_t cachedPages, int prefetch)
{
    return Owned<Pager>(new Pager(session.Get(), kind, {pageSize, cachedPages, prefetch}));
}

void BindPage(py::module_& module)
{
    py::class_<Page, std::shared_ptr<Page>>(module, "Page", "Consecutive entries of a list.")
        .def_readonly("first", &Page::first, "Index of the first entry.")
        .def_property_readonly(
            "names", [](const Page& page) { return ToObject(page.names); }, "Names of the entries, in order.")
        .def_readonly("folders", &Page::folders, "DATABASE only: the entries can be entered.")
        .def_readonly("root", &Page::root, "DATABASE only: this is the top level.")
        .def("holds", &Page::Holds, py::arg("index"), "Whether the page contains this index of the list.")
        .def(
            "at", [](const Page& page, int index) { return ToObject(page.At(index)); }, py::arg("index"),
            "The name of an entry, by its index in the list. Raises IndexError if the page does not contain it.")
        .def("__len__", [](const Page& page) { return page.names.size(); });
}

void BindKinds(py::module_& module)
{
    py::enum_<ListKind>(module, "ListKind",
                        "The lists of the device. All but PLAYING and DEVICES have a pinyin variant.")
        .value("PLAYING", ListKind::Playing)
        .value("DATABASE", ListKind::Database)
        .value("DATABASE_PINYIN", ListKind::DatabasePinyin)
        .value("UPDATE", ListKind::Update)
        .value("UPDATE_PINYIN", ListKind::UpdatePinyin)
        .value("DEVICES", ListKind::Devices);
}

using PagerClass = py::class_<Pager, Owned<Pager>>;

void BindReading(PagerClass& pager)
{
    pager.def("count", Requesting(&Pager::Count), KeepsPart(), "Number of entries. BadArgument for the update lists.")
        .def("at", Requesting(&Pager::At), KeepsPart(), py::arg("index"), "The Page that contains an entry.")
        .def("range", Requesting(&Pager::Range), KeepsPart(), py::arg("first") = 0, py::arg("last") = Pager::End,
             "The names from first to last, both included, all of the same version of the list.")
        .def(
            "cached", [](const Pager& self, int index) { return ToObject(self.Cached(index)); }, py::arg("index"),
            "The Page that contains an entry if it is cached, otherwise None.");
}

void BindMoving(PagerClass& pager)
{
    pager.def("enter_root", Requesting(&Pager::EnterRoot), KeepsPart(), "Enters the top level of the database.")
        .def("enter_parent", Requesting(&Pager::EnterParent), KeepsPart(), "Enters the parent level.")
        .def("enter_child", Requesting(&Pager::EnterChild), KeepsPart(), py::arg("index"),
             "Enters an entry of this level.")
        .def("refresh", &Pager::Refresh, py::call_guard<py::gil_scoped_release>(),
             "Drops all pages, for a list that changed without an event. Open requests raise Cancelled.")
        .def("on_outdated", Subscribing(&Pager::OnOutdated), py::arg("name"), py::arg("callback"),
             "Calls callback() when all pages are outdated: the list, its level, the device or the service changed.");
}
}  // namespace

void BindPager(py::module_& module)
{
    BindKinds(module);
    BindPage(module);
    const PagerOptions usual;
    PagerClass pager(module, "Pager", kPagerDoc);
    pager.def(py::init(&OpenPager), py::arg("session"), py::arg("kind"), py::kw_only(),
              py::arg("page_size") = usual.pageSize, py::arg("cached_pages") = usual.cachedPages,
              py::arg("prefetch") = usual.prefetch);
    BindReading(pager);
    BindMoving(pager);
}
}  // namespace ipodkit::python
