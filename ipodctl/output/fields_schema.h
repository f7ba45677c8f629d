/// @file
/// Generates JSON Schema from ipodkit's field tables. The output of ToJson() conforms to it.
#pragma once

#include <string>

#include "output/fields_json.h"

namespace ctl
{
/// Returns the pattern for the names of an enumeration, such as "^(off|one|all|unknown:-?[0-9]+)$".
template <class E>
std::string PatternOf()
{
    std::string pattern = "^(";
    for (const char* name : ipodkit::EnumNames<E>::names) pattern += name + std::string("|");
    return pattern + "unknown:-?[0-9]+)$";
}

/// Adds the fields of @p T to an object schema. Optional fields are not required.
template <class T>
void AddSchema(Json& object);

template <class T>
Json SchemaOf()
{
    if constexpr (ipodkit::kHasRows<T>)
    {
        Json object{{"type", "object"}};
        AddSchema<T>(object);
        object["additionalProperties"] = false;
        return object;
    }
    else if constexpr (ipodkit::kHasNames<T>)
        return {{"type", "string"}, {"pattern", PatternOf<T>()}};
    else if constexpr (std::is_same_v<T, bool>)
        return {{"type", "boolean"}};
    else if constexpr (std::is_unsigned_v<T>)
        return {{"type", "integer"}, {"minimum", 0}};
    else if constexpr (std::is_constructible_v<std::string, T> || std::is_same_v<T, std::vector<unsigned char>>)
        return {{"type", "string"}};
    else
        return {{"type", "integer"}};
}

template <class T>
struct Present
{
    using Type = T;
};
template <class T>
struct Present<std::optional<T>>
{
    using Type = T;
};

template <class T>
void AddSchema(Json& object)
{
    ipodkit::ForEachRow<T>(
        [&object](const auto& row)
        {
            using Field = ipodkit::FieldType<T, std::decay_t<decltype(row)>>;
            if constexpr (ipodkit::kHasRows<Field>)
            {
                if (*row.name == '\0') return AddSchema<Field>(object);
            }
            Json schema = SchemaOf<typename Present<Field>::Type>();
            schema["description"] = row.meaning;
            object["properties"][JsonName(row)] = std::move(schema);
            if constexpr (!kIsOptional<Field>) object["required"].push_back(JsonName(row));
        });
}
}  // namespace ctl
