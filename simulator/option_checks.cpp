#include "option_checks.h"

#include <glib.h>

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "faults/faults.h"

namespace ipodsim
{
std::string CheckSpeed(const std::string& text)
{
    char* end = nullptr;
    const double speed = g_ascii_strtod(text.c_str(), &end);
    const bool whole = !text.empty() && end == text.c_str() + text.size();
    return whole && std::isfinite(speed) && speed > 0 ? "" : "expected a number above 0, not " + text;
}

std::string CheckSeed(const std::string& text)
{
    unsigned seed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? "" : "expected a whole number from 0 to 4294967295, not " + text;
}

std::string CheckDeviceName(const std::string& name)
{
    if (name.empty()) return "expected a name that is not empty";
    const bool valid = g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) != FALSE;
    return valid ? "" : "expected UTF-8 text, not " + name;
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
