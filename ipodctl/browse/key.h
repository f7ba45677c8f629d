/// @file
/// Keys, independent of the terminal.
#pragma once

#include <string>

namespace ctl::browse
{
enum class Key
{
    Text,  ///< a character
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
    Left,
    Right,
    Enter,
    Backspace,
    Escape,
    Refresh,  ///< Ctrl-L
};

struct KeyPress
{
    Key key;
    std::string text;  ///< Key::Text only: the character, UTF-8
};
}  // namespace ctl::browse
