/// @file
/// Converts values of the kit to records and listener calls of the core, for code written for the core. Any thread may
/// convert.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <QBXIpodTypes.h>
#include <ipodkit/event.h>
#include <ipodkit/session.h>

#include <string>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// Returns the record as the service sent it.
QBXiPodTrackInfo ToCore(const Track& track);
iPodPhoneCall_t ToCore(const PhoneCall& call);
iPodBattery_t ToCore(const Battery& battery);

/// Calls the operation of @p listener that corresponds to the event, on the calling thread.
void Deliver(const Event& event, IQBXIpodPlayerListener& listener);

/// Delivers the events of a session to a listener of the core, in the session's context. The caller keeps the listener
/// and ends the subscription before destroying it.
Subscription Listen(Session& session, std::string name, IQBXIpodPlayerListener& listener);
}  // namespace ipodkit

#pragma GCC visibility pop
