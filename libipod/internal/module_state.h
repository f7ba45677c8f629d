/// @file
/// Module state that outlives a client object. Plain variables without locks: InitInstance() must not run while other
/// threads use the player.
#pragma once

#include <ipod_dbus.h>

namespace qbx
{
/// 1 after a client has been built in this process; never cleared, not even when the client is destroyed.
extern int clientCreated;

/// Number of clients built so far; distinguishes a client from its successor at the same address.
extern unsigned clientsBuilt;

/// The number of the existing client; 0 if there is none.
unsigned LivingClient();

/// Records that the client built last subscribes to the signals of @p proxy.
void NoteSubscriber(ComZarnLinuxIpod* proxy);

/// Whether the client that subscribed to @p proxy has been destroyed: signal connections outlive it, and its successor
/// may have the same address. False for null and for a proxy without subscriber.
bool SubscriberIsGone(ComZarnLinuxIpod* proxy);

/// The proxy that all commands use; null until InitInstance() created one. Never released.
extern ComZarnLinuxIpod* serviceProxy;
}  // namespace qbx
