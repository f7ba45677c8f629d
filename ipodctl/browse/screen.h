/// @file
/// The terminal, as a whole screen, from construction to destruction. One at a time.
#pragma once

#include <optional>

#include "browse/crash_guard.h"
#include "browse/frame.h"
#include "browse/key.h"

typedef struct screen SCREEN;  // NOLINT(readability-identifier-naming): the library's own name

namespace ctl::browse
{
/// @throws Failure  kUsage: standard input or output is no terminal
void RequireTerminal();

class Screen
{
public:
    /// @throws Failure  kUsage: the terminal is of a type that cannot be used
    Screen();

    /// Gives the terminal back as it was.
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    int Rows() const;
    int Columns() const;

    /// Takes the terminal's present size.
    void Resize();

    /// What was pressed, in order; nothing when there is no more.
    std::optional<KeyPress> Read();

    /// Shows a frame; what is on the screen already is not sent again.
    void Paint(const Frame& frame);

    /// Gives the terminal back until the next frame.
    void GiveBack();

    /// Sends everything with the next frame, also what seems to be there.
    void Forget();

private:
    CrashGuard m_guard;
    SCREEN* m_screen;
};
}  // namespace ctl::browse
