/// @file
/// A small language for lines of text with values in them.
///
///     {{ title }} {{ duration(length) }}{% if artist %} by {{ artist | upper }}{% end %}
///
///     template   = { text | "{{" expression "}}" | condition }
///     condition  = "{% if" expression "%}" template { "{% elif" expression "%}" template }
///                  [ "{% else %}" template ] "{% end %}"
///     expression = and { "or" and }          and     = not { "and" not }
///     not        = "not" not | compare       compare = pipe [ ( "==" | "!=" | "<" | "<=" | ">" | ">=" ) pipe ]
///     pipe       = value { "|" function [ ":" value { "," value } ] }
///     value      = field | number | "text" | 'text' | function "(" [ expression { "," expression } ] ")"
///                  | "(" expression ")"
///
/// Functions: default(x, y) is y where x is unknown or empty; duration(ms) is "3:45"; upper(x), lower(x);
/// cut(x, n) is x in at most n columns, pad(x, n) in at least n; json(x). `x | f: y` is `f(x, y)`.
/// False are: an unknown value, an empty text, false and 0. In text, \n, \t and \\ are a new line, a tab and \.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
class Format
{
public:
    /// @param fields  the names that a template may use
    /// @throws Failure  kUsage, with the column, and what was expected there
    static Format Parse(const std::string& text, const std::vector<std::string>& fields);

    /// @param values  an object; a field that it does not have is unknown
    /// @return  safe to show, but for control characters of the template itself
    std::string Render(const Json& values) const;

    using Piece = std::function<void(const Json& values, std::string& out)>;
    using Pieces = std::vector<Piece>;

private:
    explicit Format(Pieces pieces) : m_pieces(std::move(pieces)) {}

    Pieces m_pieces;
};
}  // namespace ctl
