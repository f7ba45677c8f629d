/// @file
/// Keeps GLib's log messages off the screen.
#pragma once

namespace ctl::browse
{
/// Collects GLib's warnings of the whole process, without duplicates and at most 20, and prints them to standard error
/// on destruction. At most one instance may exist at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
};
}  // namespace ctl::browse
