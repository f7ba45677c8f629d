/// @file
/// The published order of the virtual operations. Rows are never moved or removed. A new one is appended to the
/// interface that is declared last, because all later operations would move.
#pragma once

#include <IQBXIpodPlayer.h>

#include <vector>

#include "vtable_slots.h"

namespace slots
{
using Registry = IQBXListener<IQBXIpodPlayerListener>;

/// The destructor occupies two slots: one destroys, one deletes.
constexpr std::size_t kDestroySlot = 0;
constexpr std::size_t kDeleteSlot = 1;
constexpr std::size_t kFirstSlot = 2;

/// The operations of each interface in slot order, from kFirstSlot on.
std::vector<Row<IQBXIpodPlayerListener>> ListenerTable();
std::vector<Row<IQBXAppListener>> AppListenerTable();
std::vector<Row<Registry>> RegistryTable();

/// The player's own part, which follows the notifications of IQBXIpodPlayerListener.
std::vector<Row<IQBXIpodPlayer>> PlayerTable();

/// The slot after the player's last one: the client's own progress handler.
std::size_t ClientProgressSlot();
}  // namespace slots
