/// @file
/// Parses and renders output templates, which are text with embedded expressions.
///
///     {{ title | cut: 20 }} {{ duration(length) }} {{ artist | default: "?" }}
///
///     template   = { text | "{{" expression "}}" }
///     expression = primary { "|" function [ ":" primary { "," primary } ] }
///     primary    = field | number | "text" | 'text' | function "(" [ expression { "," expression } ] ")"
///
/// Functions: default(x, y) is y if x is unknown or empty; duration(ms) is "3:45"; upper(x), lower(x); cut(x, n)
/// truncates x to n columns, pad(x, n) pads it to n; json(x). `x | f: y` is `f(x, y)`. In text, \n, \t, and \\ are a
/// newline, a tab, and a backslash.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
/// Formats a value as printable text; empty if the value is unknown.
std::string Shown(const Json& value);

class Format
{
public:
    /// Parses a template.
    /// @param fields  the names that the template may use
    /// @throws Failure  kUsage, with the column of the error and what was expected there
    static Format Parse(const std::string& text, const std::vector<std::string>& fields);

    /// Renders the template.
    /// @param values  an object; missing fields are unknown
    /// @return  text that is safe for terminals, except for control characters in the template itself
    std::string Render(const Json& values) const;

    using Value = std::function<Json(const Json& values)>;
    struct Piece
    {
        std::string text;
        Value value;  ///< rendered after the text; null in the last piece
    };

private:
    explicit Format(std::vector<Piece> pieces) : m_pieces(std::move(pieces)) {}

    std::vector<Piece> m_pieces;
};
}  // namespace ctl
