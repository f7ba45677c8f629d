/// @file
/// The twenty events of the service, as something that can be shown.
#pragma once

#include <ipodkit/event.h>

#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
struct Event
{
    const char* name;
    Json fields;
    std::string text;  ///< printable
};

Event ToEvent(const ipodkit::Event& event);

/// What Event::name may be.
const std::vector<std::string>& EventNames();

/// The names of all fields that events have.
std::vector<std::string> NamesOfEventFields();

/// The event with the local time of now, in both forms.
Answer ToAnswer(const Event& event);
}  // namespace ctl
