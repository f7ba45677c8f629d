/// @file
/// The terminal in full-screen mode.
#pragma once

#include <optional>
#include <string_view>

#include "browse/frame.h"

typedef struct screen SCREEN;  // NOLINT(readability-identifier-naming): the library's own name

namespace ctl::browse
{
/// While an instance exists, a crash signal (SIGSEGV, SIGABRT, …) restores the terminal modes saved at construction and
/// is then raised again with its previous action. Works on stack overflow of the constructing thread, too. At most one
/// instance may exist at a time.
class CrashGuard
{
public:
    CrashGuard();
    ~CrashGuard();
    CrashGuard(const CrashGuard&) = delete;
    CrashGuard& operator=(const CrashGuard&) = delete;

    /// Sets the bytes that reset the terminal, at most 256. They depend on its type, which is known only later.
    static void SetResetSequence(std::string_view text);
};

/// @throws Failure  kUsage: standard input or output is not a terminal
void RequireTerminal();

/// Switches the terminal to full-screen mode for its lifetime. At most one instance may exist at a time.
class Screen
{
public:
    /// @param colors    whether to use colors, if the terminal has any
    /// @throws Failure  kUsage: the terminal type is unknown or cannot move the cursor
    explicit Screen(bool colors);

    /// Restores the terminal.
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    int Rows() const;
    int Columns() const;

    /// Adopts the current size of the terminal.
    void Resize();

    /// Returns the next pressed key without blocking; nothing if there is none.
    std::optional<KeyPress> Read();

    /// Shows @p frame, sending only what changed.
    void Paint(const Frame& frame) const;

    /// Restores the terminal until the next Paint().
    void Release();

    /// Makes the next Paint() redraw the whole screen.
    void RedrawAll();

private:
    CrashGuard m_guard;
    SCREEN* m_screen;
    bool m_colors = false;
};
}  // namespace ctl::browse
