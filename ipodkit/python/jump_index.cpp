#include <ipodnames/jump_index.h>

#include "bindings.h"
#include "rows.h"

namespace ipodkit::python
{
namespace
{
using ipodnames::JumpIndex;
using ipodnames::JumpIndexOptions;
using ipodnames::JumpSection;
using ipodnames::Subject;
using Texts = std::vector<std::string>;

constexpr char kIndexDoc[] =
    "Searches names in any script, by initials for example, and divides their sorted list into sections. Immutable; "
    "any thread may search. Building takes microseconds per name: use asyncio.to_thread() for long lists.";

std::unique_ptr<JumpIndex> Build(const Texts& names, std::string locale, Subject subject, Texts articles,
                                 Texts readings)
{
    const py::gil_scoped_release others;
    return std::make_unique<JumpIndex>(
        names, JumpIndexOptions{std::move(locale), subject, std::move(articles), std::move(readings)});
}

void BindReadings(py::module_& module)
{
    py::enum_<Subject>(module, "Subject", "Kind of names; some surnames have special readings.")
        .value("UNKNOWN", Subject::Unknown)
        .value("PERSON", Subject::Person)
        .value("TITLE", Subject::Title);
    module.def("reading", &ipodnames::Reading, py::arg("name"), py::arg("subject") = Subject::Unknown,
               py::call_guard<py::gil_scoped_release>(),
               "The reading of a name, in lower-case Latin letters and digits: \"zhou ming xuan\" for 周明轩.");
    py::class_<JumpSection>(module, "JumpSection", "Position where the names of a letter begin.")
        .def_readonly("label", &JumpSection::label, "A letter of the locale's alphabet, or \"#\" for all others.")
        .def_readonly("position", &JumpSection::position, "Index in JumpIndex.order.");
}
}  // namespace

void BindJumpIndex(py::module_& module)
{
    BindReadings(module);
    const JumpIndexOptions usual;
    py::class_<JumpIndex>(module, "JumpIndex", kIndexDoc)
        .def(py::init(&Build), py::arg("names"), py::kw_only(), py::arg("locale") = usual.locale,
             py::arg("subject") = usual.subject, py::arg("articles") = usual.articles,
             py::arg("readings") = usual.readings)
        .def("search", &JumpIndex::Search, py::arg("query"), py::arg("limit") = 100,
             py::call_guard<py::gil_scoped_release>(),
             "Indices of at most `limit` names that match the beginnings of syllables or words: \"zmx\" finds 周明轩.")
        .def_property_readonly("order", &JumpIndex::Order, "Indices of the names as the locale sorts them.")
        .def_property_readonly("sections", &JumpIndex::Sections, "The JumpSection of each letter, in their order.")
        .def("reading", &JumpIndex::Reading, py::arg("index"),
             "The reading of a name. Raises IndexError for an invalid index.")
        .def("__len__", &JumpIndex::Size);
}
}  // namespace ipodkit::python
