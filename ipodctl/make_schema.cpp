// Adds the events and values of ipodkit to the JSON Schema of ipodctl's answers: make-schema ANSWERS >SCHEMA
#include <ipodkit/event.h>

#include <fstream>
#include <iostream>
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
            Json schema;
            if constexpr (ipodkit::kIsOptional<Field>)
                schema = SchemaOf<typename Field::value_type>();
            else
                schema = SchemaOf<Field>();
            schema["description"] = row.meaning;
            object["properties"][JsonName(row)] = std::move(schema);
            if constexpr (!ipodkit::kIsOptional<Field>) object["required"].push_back(JsonName(row));
        });
}

namespace
{
void AddEvent(Json& schema, const std::string& event, Json object)
{
    object["description"] = "An event, on a separate line";
    object["properties"]["time"] = {{"$ref", "#/$defs/time"}};
    object["properties"]["event"] = {{"const", event}};
    object["required"].push_back("time");
    object["required"].push_back("event");
    schema["oneOf"].push_back({{"$ref", "#/$defs/event-" + event}});
    schema["$defs"]["event-" + event] = std::move(object);
}

template <class... Events>
void AddEvents(Json& schema, const std::variant<Events...>*)
{
    (AddEvent(schema, ipodkit::Rows<Events>::name, SchemaOf<Events>()), ...);
}

void Complete(Json& schema)
{
    Json& definitions = schema["$defs"];
    definitions["state"] = SchemaOf<ipodkit::PlayStatus>();
    definitions["detection"] = SchemaOf<ipodkit::DeviceStatus>();
    definitions["track"] = SchemaOf<ipodkit::Track>();
    definitions["picture"] = SchemaOf<ipodkit::Picture>();
    definitions["battery"] = SchemaOf<ipodkit::Battery>();
    definitions["call"] = SchemaOf<ipodkit::PhoneCall>();
    AddEvents(schema, static_cast<const ipodkit::Event*>(nullptr));
}
}  // namespace
}  // namespace ctl

int main(int argc, char** argv)
{
    if (argc != 2) return std::cerr << "usage: make-schema ANSWERS\n", 2;
    std::ifstream answers(argv[1]);
    ctl::Json schema = ctl::Json::parse(answers);
    ctl::Complete(schema);
    std::cout << schema.dump(2) << "\n";
    return std::cout.flush() ? 0 : 1;
}
