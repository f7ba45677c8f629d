/// @file
/// org.mpris.MediaPlayer2 of a player without a window.
#pragma once

#include "bus_object.h"

namespace companion
{
inline constexpr char kMprisPath[] = "/org/mpris/MediaPlayer2";

class Root : public BusObject
{
public:
    explicit Root(GDBusConnection* connection);

private:
    void Call(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation) override;
};
}  // namespace companion
