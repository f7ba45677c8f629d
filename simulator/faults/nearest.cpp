#include "faults/nearest.h"

#include <ipodnames/nearest.h>

namespace ipodsim
{
std::string NearestHint(const std::string& name, const std::vector<std::string>& names)
{
    const std::string nearest = ipodnames::Nearest(name, names);
    return nearest.empty() ? "" : " (did you mean '" + nearest + "'?)";
}

std::string UnknownName(const char* what, const std::string& name, const std::vector<std::string>& names)
{
    return std::string("the interface has no ") + what + " '" + name + "'" + NearestHint(name, names);
}
}  // namespace ipodsim
