#include "bindings.h"
#include "rows.h"
#include "values.h"

namespace ipodkit::python
{
namespace
{
// Calls @p use with each field and the name of its Python constant.
template <class Use>
void ForEachField(const Use& use)
{
    use(Field::Connection, "CONNECTION");
    ForEachRow<PlayerState>([&use](const auto& row) { use(row.field, ConstantName(row.name)); });
}

void BindPlayerState(py::module_& module)
{
    BindRows<Position>(module).def("now", &Position::Now, "The extrapolated position: a timedelta.");
    BindRows<PlayerState, std::shared_ptr<PlayerState>>(module)
        .def_readonly("version", &PlayerState::version, "Increases by 1 with each published state.")
        .def_readonly("phase", &PlayerState::phase, "State of the connection to the service.")
        .def_readonly("generation", &PlayerState::generation, "Number of times the service has appeared.")
        .def_property_readonly(
            "remembered", [](const PlayerState& state) { return ToPython(state.remembered); },
            "The fields that are known only from the companion daemon.")
        .def("why", &PlayerState::Why, py::arg("field"), "Why a field is None: an Unknown. None for known fields.");
}
}  // namespace

void BindState(py::module_& module)
{
    py::enum_<Phase>(module, "Phase")
        .value("ABSENT", Phase::Absent)
        .value("CONNECTING", Phase::Connecting)
        .value("READY", Phase::Ready)
        .value("LOST", Phase::Lost);
    py::enum_<Field> fields(module, "Field", "The parts of a PlayerState.");
    ForEachField([&fields](Field field, const std::string& name) { fields.value(name.c_str(), field); });
    BindPlayerState(module);
}

// Python has no const objects, but all bound members are read-only.
py::object ToPython(const StatePtr& state)
{
    return py::cast(std::const_pointer_cast<PlayerState>(state));
}

py::object ToPython(Fields fields)
{
    py::set set;
    ForEachField(
        [&](Field field, const std::string&)
        {
            if (fields.Has(field)) set.add(field);
        });
    return py::frozenset(set);
}

Fields ToFields(const py::object& fields)
{
    if (fields.is_none()) return Fields::All();
    Fields wanted;
    for (const py::handle each : fields)
    {
        if (!py::isinstance<Field>(each)) throw py::type_error("expected members of ipodkit.Field");
        wanted = wanted | Fields(each.cast<Field>());
    }
    return wanted;
}
}  // namespace ipodkit::python
