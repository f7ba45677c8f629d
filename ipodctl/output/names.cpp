#include "output/names.h"

#include <cstddef>

namespace ctl
{
namespace
{
// The enumerations of the interface count from 0 without a gap.
template <std::size_t N>
std::string Name(const char* const (&names)[N], int number)
{
    const auto index = static_cast<std::size_t>(number);
    return number >= 0 && index < N ? names[index] : "unknown:" + std::to_string(number);
}

constexpr const char* kPlayStatus[] = {"stopped", "playing", "paused", "fast-forward", "fast-backward"};
constexpr const char* kShuffle[] = {"off", "songs", "albums"};
constexpr const char* kRepeat[] = {"off", "one", "all"};
constexpr const char* kDetect[] = {"detected", "not-detected", "unsupported"};
constexpr const char* kLocation[] = {"stopped", "requested"};
constexpr const char* kCallStatus[] = {"disconnected", "sending", "ringing",      "connecting",
                                       "active",       "held",    "disconnecting"};
constexpr const char* kCallDirection[] = {"unknown", "incoming", "outgoing"};
constexpr const char* kCallService[] = {"unknown", "telephony", "video", "audio"};
constexpr const char* kCallEnd[] = {"ended", "declined", "failed"};
constexpr const char* kCharging[] = {"disabled", "charging", "charged", "discharging"};
}  // namespace

std::string PlayStatusName(int status)
{
    return Name(kPlayStatus, status);
}

std::string ShuffleName(int mode)
{
    return Name(kShuffle, mode);
}

std::string RepeatName(int mode)
{
    return Name(kRepeat, mode);
}

std::string DetectName(int status)
{
    return Name(kDetect, status);
}

std::string LocationName(int status)
{
    return Name(kLocation, status);
}

std::string CallStatusName(int status)
{
    return Name(kCallStatus, status);
}

std::string CallDirectionName(int direction)
{
    return Name(kCallDirection, direction);
}

std::string CallServiceName(int service)
{
    return Name(kCallService, service);
}

std::string CallEndName(int reason)
{
    return Name(kCallEnd, reason);
}

std::string ChargingName(int status)
{
    return Name(kCharging, status);
}
}  // namespace ctl
