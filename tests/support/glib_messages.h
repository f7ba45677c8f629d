/// @file
/// Captures GLib's warnings.
#pragma once

#include <string>
#include <vector>

namespace test
{
/// Collects GLib's warnings and criticals instead of printing them, during its lifetime. Only one may exist at a time.
class GLibMessages
{
public:
    GLibMessages();
    ~GLibMessages();
    GLibMessages(const GLibMessages&) = delete;
    GLibMessages& operator=(const GLibMessages&) = delete;

    /// "critical: …" and "warning: …" in order.
    std::vector<std::string> Lines() const;
};
}  // namespace test
