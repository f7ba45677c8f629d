#include "command_line.h"

#include <glib.h>

#include <charconv>
#include <stdexcept>
#include <system_error>

#include "faults/faults.h"
#include "playback/clock.h"

namespace ipodsim
{
std::string CheckSpeed(const std::string& text)
{
    char* end = nullptr;
    const double speed = g_ascii_strtod(text.c_str(), &end);
    const bool whole = !text.empty() && end == text.c_str() + text.size();
    const bool fits = whole && speed >= kSlowest && speed <= kFastest;
    return fits ? "" : "expected a number between 0.001 and 10000, got '" + text + "'";
}

std::string CheckSeed(const std::string& text)
{
    unsigned seed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? "" : "expected an integer between 0 and 4294967295, got '" + text + "'";
}

std::string CheckNotEmpty(const std::string& name)
{
    return name.empty() ? "expected a non-empty name" : "";
}

std::string CheckDeviceName(const std::string& name)
{
    if (name.empty()) return CheckNotEmpty(name);
    const bool valid = g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) != FALSE;
    return valid ? "" : "expected UTF-8 text, got '" + name + "'";
}

std::string CheckFault(const std::string& fault)
{
    try
    {
        ParseFault(fault);
        return {};
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
}
}  // namespace ipodsim
