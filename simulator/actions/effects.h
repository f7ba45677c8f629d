/// @file
/// The effects of the actions. Each value has been validated against the action's row in the table.
#pragma once

#include "actions/json.h"
#include "service/service.h"

namespace ipodsim::effects
{
Json PhoneCall(Service& service, const Json& value);
Json Battery(Service& service, const Json& value);
Json Carplay(Service& service, const Json& value);
Json Carlife(Service& service, const Json& value);
Json Wireless(Service& service, const Json& value);
Json Pairing(Service& service, const Json& value);
Json Location(Service& service, const Json& value);
Json Source(Service& service, const Json& value);
Json App(Service& service, const Json& value);
Json Attach(Service& service, const Json& value);
Json Detach(Service& service, const Json& value);
Json Button(Service& service, const Json& value);
Json EapOpen(Service& service, const Json& value);
Json EapClose(Service& service, const Json& value);
Json EapData(Service& service, const Json& value);
Json ArmFault(Service& service, const Json& value);
Json ClearFaults(Service& service, const Json& value);
}  // namespace ipodsim::effects
