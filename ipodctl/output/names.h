/// @file
/// Words for the numbers of the public interface, and numbers for the words of the command line.
#pragma once

#include <QBXIpodTypes.h>

#include <string>

namespace ctl
{
/// Each gives "unknown:N" for a number that has no name.
std::string PlayStatusName(int status);
std::string ShuffleName(int mode);
std::string RepeatName(int mode);
std::string DetectName(int status);
std::string LocationName(int status);
std::string CallStatusName(int status);
std::string CallDirectionName(int direction);
std::string CallServiceName(int service);
std::string CallEndName(int reason);
std::string ChargingName(int status);
}  // namespace ctl
