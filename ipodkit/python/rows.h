/// @file
/// Generates Python classes from the field tables.
#pragma once

#include <ipodkit/fields.h>
#include <ipodkit/known.h>
#include <ipodkit/pager.h>
#include <ipodkit/picture.h>
#include <ipodkit/types.h>
#include <pybind11/chrono.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "values.h"

namespace ipodkit::python
{
/// Decodes UTF-8 and replaces invalid bytes, because text from the device may have any encoding.
py::object ToObject(const std::string& text);
py::object ToObject(const std::vector<unsigned char>& bytes);

/// Returns a datetime in UTC, or None if the time is out of its range.
py::object ToObject(const PhoneCall::Time& time);

py::object ToObject(const PicturePtr& picture);
py::object ToObject(const PagePtr& page);
py::object ToObject(const std::vector<std::string>& texts);

template <class T>
py::object ToObject(const T& value)
{
    return py::cast(value);
}

/// Converts an absent or unknown value to None.
template <class T>
py::object ToObject(const std::optional<T>& value)
{
    return value ? ToObject(*value) : py::none();
}

template <class T>
py::object ToObject(const Known<T>& value)
{
    return value ? ToObject(*value) : py::none();
}

template <class Key, class T>
py::object ToObject(const std::map<Key, T>& values)
{
    py::dict dict;
    for (const auto& [key, value] : values) dict[ToObject(key)] = ToObject(value);
    return std::move(dict);
}

/// Returns "<ipodkit.Battery percent=42>", without fields that are None.
template <class T>
py::str ReprOf(const T& value)
{
    std::string text = std::string("<ipodkit.") + Rows<T>::type;
    ForEachRow<T>(
        [&](const auto& row)
        {
            const py::object field = ToObject(std::invoke(row.get, value));
            const std::string name = *row.name == '\0' ? "" : row.name + std::string("=");
            if (!field.is_none()) text += " " + name + std::string(py::repr(field));
        });
    return text + ">";
}

/// Adds the fields of @p T as properties to the class of @p T, or to that of a struct that embeds @p T.
template <class T, class Class, class Reach>
void AddProperties(Class& type, const Reach& reach)
{
    ForEachRow<T>(
        [&](const auto& row)
        {
            using Field = FieldType<T, std::decay_t<decltype(row)>>;
            const auto get = row.get;
            const auto field = [reach, get](const auto& value) -> decltype(auto)
            { return std::invoke(get, reach(value)); };
            if constexpr (kHasRows<Field>)
            {
                if (*row.name == '\0') return AddProperties<Field>(type, field);
            }
            const std::string doc = std::string(row.meaning) + ".";
            const auto read = [field](const typename Class::type& value) { return ToObject(field(value)); };
            type.def_property_readonly(row.name, read, doc.c_str());
        });
}

/// Binds a struct with one read-only property per row.
template <class T, class... Extra>
py::class_<T, Extra...> BindRows(py::module_& module)
{
    py::class_<T, Extra...> type(module, Rows<T>::type);
    AddProperties<T>(type, [](const T& value) -> const T& { return value; });
    type.def("__repr__", ReprOf<T>);
    return type;
}

/// Binds an enumeration; the constant of "fast-forward" is FAST_FORWARD.
template <class E>
void BindNames(py::module_& module)
{
    auto type = Enumeration<E>(module, EnumNames<E>::type);
    int value = 0;
    for (const char* name : EnumNames<E>::names) type.value(ConstantName(name).c_str(), static_cast<E>(value++));
}
}  // namespace ipodkit::python
