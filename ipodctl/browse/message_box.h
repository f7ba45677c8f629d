/// @file
/// Keeps what GLib has to say off the screen.
#pragma once

namespace ctl::browse
{
/// From construction to destruction, messages are kept; then they go to standard error. One at a time, and for the
/// whole process.
class MessageBox
{
public:
    MessageBox();
    ~MessageBox();
    MessageBox(const MessageBox&) = delete;
    MessageBox& operator=(const MessageBox&) = delete;
};
}  // namespace ctl::browse
