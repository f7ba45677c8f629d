/// @file
/// Takes the place of GLib's functions that release memory, so that a test sees what the library gives back.
#pragma once

#include <glib.h>

#include <atomic>

namespace test
{
/// Errors that were released so far.
extern std::atomic<int> errorsReleased;

/// A block that a test wants to see released; null once it was.
extern std::atomic<gpointer> unreleased;
}  // namespace test
