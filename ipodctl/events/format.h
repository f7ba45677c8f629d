/// @file
/// Templates for lines of output: text with values in it.
///
///     {{ title | cut: 20 }} {{ duration(length) }} {{ artist | default: "?" }}
///
///     template   = { text | "{{" expression "}}" }
///     expression = primary { "|" function [ ":" primary { "," primary } ] }
///     primary    = field | number | "text" | 'text' | function "(" [ expression { "," expression } ] ")"
///
/// Functions: default(x, y) is y where x is unknown or empty; duration(ms) is "3:45"; upper(x), lower(x);
/// cut(x, n) is x in at most n columns, pad(x, n) in at least n; json(x). `x | f: y` is `f(x, y)`.
/// In text, \n, \t and \\ are a new line, a tab and \.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
/// A value within a line: printable, empty when it is unknown.
std::string Shown(const Json& value);

class Format
{
public:
    /// @param fields  the names that a template may use
    /// @throws Failure  kUsage, with the column, and what was expected there
    static Format Parse(const std::string& text, const std::vector<std::string>& fields);

    /// @param values  an object; a field that it does not have is unknown
    /// @return  safe to show, but for control characters of the template itself
    std::string Render(const Json& values) const;

    using Value = std::function<Json(const Json& values)>;
    struct Piece
    {
        std::string text;
        Value value;  ///< shown after the text; null at the end
    };

private:
    explicit Format(std::vector<Piece> pieces) : m_pieces(std::move(pieces)) {}

    std::vector<Piece> m_pieces;
};
}  // namespace ctl
