#include "values.h"

#include <glib.h>
#include <ipodkit/commands.h>

#include "bindings.h"
#include "rows.h"

namespace ipodkit::python
{
namespace
{
py::object NameOfMember(const py::object& value)
{
    for (const auto& [name, member] : py::dict(py::type::of(value).attr("__members__")))
        if (member.equal(value)) return py::reinterpret_borrow<py::object>(name);
    return py::none();
}

py::str Printed(const py::object& value, const char* withName, const char* withNumber)
{
    const py::object name = NameOfMember(value);
    const py::object type = py::type::of(value).attr("__name__");
    return name.is_none() ? Described(withNumber, type, value.attr("value"))
                          : Described(withName, type, name, value.attr("value"));
}
}  // namespace

void PrintNumbersWithoutName(const py::object& enumeration)
{
    const py::is_method method(enumeration);
    const auto repr = [](const py::object& value) { return Printed(value, "<{}.{}: {}>", "<{}: {}>"); };
    const auto str = [](const py::object& value) { return Printed(value, "{}.{}", "{}({})"); };
    const py::object property = py::module_::import("builtins").attr("property");
    enumeration.attr("name") = property(py::cpp_function(NameOfMember));
    enumeration.attr("__repr__") = py::cpp_function(repr, py::name("__repr__"), method);
    enumeration.attr("__str__") = py::cpp_function(str, py::name("__str__"), method);
}

std::string ConstantName(std::string name)
{
    for (char& each : name) each = each == '-' || each == ' ' ? '_' : g_ascii_toupper(each);
    return name;
}

py::object ToObject(const std::string& text)
{
    PyObject* const decoded = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
    if (decoded == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

py::object ToObject(const std::vector<unsigned char>& bytes)
{
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

py::object ToObject(const std::vector<std::string>& texts)
{
    py::list list;
    for (const std::string& each : texts) list.append(ToObject(each));
    return std::move(list);
}

py::object ToObject(const PhoneCall::Time& time)
{
    const py::module_ datetime = py::module_::import("datetime");
    const py::object seconds = datetime.attr("timedelta")(0, time.time_since_epoch().count());
    const py::object epoch =
        datetime.attr("datetime")(1970, 1, 1, py::arg("tzinfo") = datetime.attr("timezone").attr("utc"));
    try
    {
        return epoch + seconds;
    }
    catch (const py::error_already_set& error)
    {
        if (!error.matches(PyExc_OverflowError)) throw;
    }
    return py::none();
}

// Python has no const objects, but all bound members are read-only.
py::object ToObject(const PicturePtr& picture)
{
    return py::cast(std::const_pointer_cast<Picture>(picture));
}

py::object ToObject(const PagePtr& page)
{
    return py::cast(std::const_pointer_cast<Page>(page));
}

void BindValues(py::module_& module)
{
    BindNames<PlayStatus>(module);
    BindNames<Shuffle>(module);
    BindNames<Repeat>(module);
    BindNames<Winding>(module);
    BindNames<DeviceStatus>(module);
    BindNames<LocationStatus>(module);
    BindNames<ChargingStatus>(module);
    BindNames<CallStatus>(module);
    BindNames<CallDirection>(module);
    BindNames<CallService>(module);
    BindNames<CallEnd>(module);
    BindNames<Unknown>(module);
    Enumeration<PlayOption>(module, "PlayOption", "How playback starts.")
        .value("START", PlayOption::Start)
        .value("RESUME", PlayOption::Resume)
        .value("RESTART", PlayOption::Restart);
    BindRows<Track>(module);
    BindRows<PhoneCall>(module);
    BindRows<Battery>(module);
    BindRows<CarPlayDevice>(module);
    BindRows<WirelessCarPlay>(module);
    BindRows<PairingInfo>(module);
    BindRows<PlayPosition>(module);
    BindRows<Picture, std::shared_ptr<Picture>>(module).def_property_readonly(
        "data", [](const Picture& picture) { return ToObject(picture.bytes); }, "The image.");
}
}  // namespace ipodkit::python
