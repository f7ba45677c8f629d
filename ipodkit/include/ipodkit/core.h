/// @file
/// From the values of the kit to the records and the listener of the core, for code that uses those.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <QBXIpodTypes.h>
#include <ipodkit/event.h>
#include <ipodkit/session.h>

#include <string>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// The record as the service sent it.
QBXiPodTrackInfo ToCore(const Track& track);
iPodPhoneCall_t ToCore(const PhoneCall& call);
iPodBattery_t ToCore(const Battery& battery);

/// Calls the operation of a core listener that corresponds to the event.
void Deliver(const Event& event, IQBXIpodPlayerListener& listener);

/// Session::OnEvent() for a listener of the core, owned by the caller: end the subscription before destroying it.
Subscription Listen(Session& session, std::string name, IQBXIpodPlayerListener& listener);
}  // namespace ipodkit

#pragma GCC visibility pop
