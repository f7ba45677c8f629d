/// @file
/// Replaces GLib's functions that release memory, so that a test detects what the library releases.
#pragma once

#include <glib.h>

#include <atomic>

namespace test
{
/// Number of errors released so far.
extern std::atomic<int> errorsReleased;

/// A block whose release a test expects; null once it was released.
extern std::atomic<gpointer> unreleased;
}  // namespace test
