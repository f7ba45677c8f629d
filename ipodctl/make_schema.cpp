// Adds the events and values of ipodkit to the JSON Schema of ipodctl's answers: make-schema ANSWERS >SCHEMA
#include <ipodkit/event.h>

#include <fstream>
#include <iostream>

#include "output/fields_schema.h"

namespace ctl
{
namespace
{
void AddEvent(Json& schema, const std::string& event, Json object)
{
    object["description"] = "An event, on a line of its own";
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
