/// @file
/// What the module remembers beyond the life of a client object. Plain variables without locks: InitInstance()
/// must not run while other threads use the player.
#pragma once

#include <ipod_dbus.h>

namespace qbx
{
/// 1 once a client was built in this process; never cleared, not even when the client is destroyed.
extern int clientCreated;

/// Counts the clients built so far, and so tells one from its successor at the same address.
extern unsigned clientsBuilt;

/// The number of the client that there is; 0 when there is none.
unsigned LivingClient();

/// Notes that the client built last subscribes to the signals of @p proxy.
void NoteSubscriber(ComZarnLinuxIpod* proxy);

/// Whether the client that subscribed to @p proxy was destroyed since: signal connections outlive it, and its successor
/// may have the same address. Not so of a proxy that no client subscribed to, nor of null.
bool SubscriberIsGone(ComZarnLinuxIpod* proxy);

/// The proxy that all commands use; null until InitInstance() created one. Never released.
extern ComZarnLinuxIpod* serviceProxy;
}  // namespace qbx
