/// @file
/// Serializes ipodkit values to JSON by ipodkit's field tables.
#pragma once

#include <ipodkit/fields.h>
#include <ipodkit/known.h>
#include <ipodkit/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "output/output.h"
#include "output/text.h"

namespace ctl
{
template <class T>
Json ToJson(const T& value);

template <class Ratio>
Json ToJson(const std::chrono::duration<std::int64_t, Ratio>& time)
{
    return time.count();
}

inline Json ToJson(const ipodkit::PhoneCall::Time& time)
{
    return static_cast<std::uint64_t>(time.time_since_epoch().count());
}

inline Json ToJson(const std::vector<unsigned char>& bytes)
{
    return Hex({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

/// Unknown values become null.
template <class T>
Json ToJson(const ipodkit::Known<T>& value)
{
    return value ? ToJson(*value) : Json();
}

/// Adds the fields of a value to an object. Omits absent optional fields.
template <class T>
void AddFields(Json& fields, const T& value)
{
    ipodkit::ForEachRow<T>(
        [&](const auto& row)
        {
            const auto& field = std::invoke(row.get, value);
            using Field = std::decay_t<decltype(field)>;
            if constexpr (ipodkit::kHasRows<Field>)
            {
                if (*row.name == '\0') return AddFields(fields, field);
            }
            if constexpr (ipodkit::kIsOptional<Field>)
            {
                if (field) fields[JsonName(row)] = ToJson(*field);
            }
            else
                fields[JsonName(row)] = ToJson(field);
        });
}

template <class T>
Json ToJson(const T& value)
{
    if constexpr (ipodkit::kHasRows<T>)
    {
        Json fields = Json::object();
        AddFields(fields, value);
        return fields;
    }
    else if constexpr (ipodkit::kHasNames<T>)
        return ToString(value);
    else
        return value;
}
}  // namespace ctl
