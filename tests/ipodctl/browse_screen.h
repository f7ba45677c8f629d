/// @file
/// Helpers shared by the tests of the browser's model and screen.
#pragma once

#include <algorithm>
#include <map>
#include <string_view>

#include "browse/frame.h"
#include "output/text.h"

namespace ctl::browse
{
// UTF-8 continuation bytes.
inline const std::string kContinuation = []
{
    std::string bytes;
    for (int byte = 0x80; byte < 0xC0; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}();

constexpr Time kNow{std::chrono::seconds(1000)};

/// Stores a page that the service would have sent.
inline void PutPage(Model& model, int first, const std::vector<std::string>& names, bool folders = false)
{
    model.Put(std::make_shared<const ipodkit::Page>(ipodkit::Page{first, names, folders, model.AtRoot()}));
}

/// Loads all names of the current level and indexes them.
inline void Fill(Model& model, const std::vector<std::string>& names, bool folders = false)
{
    model.SetCount(static_cast<int>(names.size()));
    PutPage(model, 0, names, folders);
    model.SetIndex(ipodnames::JumpIndex(names));
}

inline Action Press(Model& model, Key key)
{
    return model.Press({key, {}}, kNow);
}

/// Types @p text character by character; returns the last action.
inline Action Type(Model& model, const std::string& text, Time now = kNow)
{
    Action action;
    for (const char letter : text) action = model.Press({Key::Text, std::string(1, letter)}, now);
    return action;
}

inline std::string SelectedName(const Model& model)
{
    const std::string* const name = model.Current().names.At(model.Selected());
    return name == nullptr ? "" : *name;
}

/// Renders a line with each span at its column; later spans overwrite earlier ones.
inline std::string Rendered(const Line& line)
{
    std::map<int, std::string> cells;
    for (const Span& span : line)
    {
        int column = span.column;
        for (std::string_view rest = span.text; !rest.empty();)
        {
            const std::size_t end = std::min(rest.find_first_not_of(kContinuation, 1), rest.size());
            const std::string character(rest.substr(0, end));
            cells[column] = character;
            for (int i = 1; i < Width(character); ++i) cells[column + i] = "";
            column += Width(character);
            rest.remove_prefix(end);
        }
    }
    std::string text;
    int column = 0;
    for (const auto& [at, character] : cells)
    {
        text.append(static_cast<std::size_t>(std::max(0, at - column)), ' ').append(character);
        column = at + 1;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}
}  // namespace ctl::browse
