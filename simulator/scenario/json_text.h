/// @file
/// JSON texts, checked for what nlohmann::json lets pass.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ipodsim
{
/// @throws std::runtime_error  it is not JSON: "line 3, column 14: ..."
/// @throws ValidationError     a member occurs twice in an object, or a number cannot be stored
nlohmann::json ParseJson(const std::string& text);
}  // namespace ipodsim
