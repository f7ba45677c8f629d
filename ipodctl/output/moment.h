/// @file
/// When something happened.
#pragma once

#include <string>

namespace ctl
{
/// A local time.
struct Moment
{
    std::string full;   ///< "2026-11-21T10:12:42.123+01:00"
    std::string clock;  ///< "10:12:42.123"

    static Moment Now();
};
}  // namespace ctl
