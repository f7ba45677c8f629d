/// @file
/// com.zarn.linux.ipod.State: a property for each field of the state, generated from its row.
#pragma once

#include <ipodkit/player_state.h>
#include <ipodkit/variant.h>

#include <string>

#include "bus_object.h"
#include "counters.h"

namespace companion
{
using ipodkit::kStateName;
using ipodkit::kStatePath;

/// Returns the description of the interface in D-Bus XML.
std::string StateInterfaceXml();

class StateObject : public BusObject
{
public:
    StateObject(GDBusConnection* connection, const Counters& counters);

    /// Publishes the state.
    void Follow(const ipodkit::StatePtr& state);

private:
    GVariant* Compute(const std::string& property) const override;
    std::string WhyAbsent(const std::string& property) const override;
    void Call(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation) override;

    const Counters& m_counters;
    ipodkit::StatePtr m_state = std::make_shared<const ipodkit::PlayerState>();
};
}  // namespace companion
