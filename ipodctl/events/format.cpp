#include "events/format.h"

#include <glib.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
constexpr int kMaxDepth = 50;
constexpr char kDescribed[] = "ipodctl(1) describes fields and functions under TEMPLATES";
constexpr char kAnExpression[] = "a field, a function, a number, or quoted text";

using Value = Format::Value;
using Arguments = std::vector<Json>;

struct FormatFunction
{
    const char* name;
    std::size_t arguments;
    Json (*call)(const Arguments& arguments);
};

int NumberIn(const Json& value)
{
    if (!value.is_number()) return 0;
    return static_cast<int>(std::clamp(value.get<double>(), -2147483648.0, 2147483647.0));
}

std::string FromOwned(gchar* text)
{
    std::string result = text;
    g_free(text);
    return result;
}

Json Default(const Arguments& arguments)
{
    return Shown(arguments[0]).empty() ? arguments[1] : arguments[0];
}

Json Duration(const Arguments& arguments)
{
    return arguments[0].is_number() ? Json(Clock(NumberIn(arguments[0]))) : Json();
}

Json UpperCase(const Arguments& arguments)
{
    return FromOwned(g_utf8_strup(Shown(arguments[0]).c_str(), -1));
}

Json LowerCase(const Arguments& arguments)
{
    return FromOwned(g_utf8_strdown(Shown(arguments[0]).c_str(), -1));
}

Json CutTo(const Arguments& arguments)
{
    return Cut(Shown(arguments[0]), NumberIn(arguments[1]));
}

// Caps the width, so that a mistyped number does not produce huge lines.
Json PadTo(const Arguments& arguments)
{
    constexpr int kWidest = 10000;
    return Pad(Shown(arguments[0]), std::min(NumberIn(arguments[1]), kWidest));
}

Json AsJson(const Arguments& arguments)
{
    return Dump(arguments[0]);
}

constexpr FormatFunction kFunctions[] = {
    {"cut", 2, CutTo},       {"default", 2, Default}, {"duration", 1, Duration}, {"json", 1, AsJson},
    {"lower", 1, LowerCase}, {"pad", 2, PadTo},       {"upper", 1, UpperCase},
};

const FormatFunction* FindFormatFunction(const std::string& name)
{
    const auto* const found = std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                           [&](const FormatFunction& function) { return function.name == name; });
    return found == std::end(kFunctions) ? nullptr : found;
}

std::vector<std::string> FormatFunctionNames()
{
    std::vector<std::string> names;
    for (const FormatFunction& function : kFunctions) names.emplace_back(function.name);
    return names;
}

constexpr std::string_view kBlanks = " \t\n";

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::size_t NameLength(std::string_view text)
{
    if (text.empty() || !IsLetter(text[0])) return 0;
    const auto* const end =
        std::find_if_not(text.begin(), text.end(), [](char c) { return IsLetter(c) || IsDigit(c); });
    return static_cast<std::size_t>(end - text.begin());
}

// Keeps unknown escape sequences unchanged, including the backslash.
std::string Unescaped(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        const char meant = next == 'n' ? '\n' : next == 't' ? '\t' : next == '\\' ? '\\' : '\0';
        plain += meant != '\0' ? meant : text[i];
        if (meant != '\0') ++i;
    }
    return plain;
}

// Returns the first word of the unexpected text, quoted for an error message.
std::string Start(std::string_view text)
{
    constexpr int kShown = 12;
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    return text.empty() ? "the end of the template" : "'" + Cut(Printable(word), kShown) + "'";
}
/// Tokenizes a template and reports syntax errors with their column.
class Scanner
{
public:
    explicit Scanner(const std::string& text) : m_text(text) {}

    bool AtEnd() const { return m_at >= m_text.size(); }

    /// Consumes literal text up to the next "{{" and returns it unescaped.
    std::string TakeLiteral();

    /// Consumes @p mark if it is next; returns whether it was. TakeAfterBlanks() skips blanks first.
    bool Take(std::string_view mark);
    bool TakeAfterBlanks(std::string_view mark);

    /// Skip blanks, then consume a name, digits, or quoted text. Return an empty string (TakeQuoted(): false) if there
    /// is none.
    std::string TakeName();
    std::string TakeNumber();
    bool TakeQuoted(std::string& text);

    std::size_t Place() const { return m_at; }

    /// @throws Failure  kUsage: "--format: column 7: expected …, got …"
    /// @param hint  the remedy; by default where templates are described
    [[noreturn]] void Expected(const std::string& what) const { ExpectedAt(m_at, what); }
    [[noreturn]] void ExpectedAt(std::size_t place, const std::string& what,
                                 const std::string& hint = kDescribed) const;

private:
    void SkipBlanks();
    std::string_view Rest() const { return std::string_view(m_text).substr(m_at); }

    const std::string m_text;
    std::size_t m_at = 0;
};

std::string Scanner::TakeLiteral()
{
    const std::size_t end = std::min(m_text.find("{{", m_at), m_text.size());
    const std::string_view literal = Rest().substr(0, end - m_at);
    m_at = end;
    return Unescaped(literal);
}

void Scanner::SkipBlanks()
{
    m_at = std::min(m_text.find_first_not_of(kBlanks, m_at), m_text.size());
}

bool Scanner::Take(std::string_view mark)
{
    if (Rest().substr(0, mark.size()) != mark) return false;
    m_at += mark.size();
    return true;
}

bool Scanner::TakeAfterBlanks(std::string_view mark)
{
    SkipBlanks();
    return Take(mark);
}

std::string Scanner::TakeName()
{
    SkipBlanks();
    std::string name(Rest().substr(0, NameLength(Rest())));
    m_at += name.size();
    return name;
}

std::string Scanner::TakeNumber()
{
    SkipBlanks();
    const std::string_view rest = Rest();
    const auto* const end = std::find_if_not(rest.begin(), rest.end(), IsDigit);
    std::string number(rest.begin(), end);
    m_at += number.size();
    return number;
}

bool Scanner::TakeQuoted(std::string& text)
{
    SkipBlanks();
    const char quote = AtEnd() ? '\0' : m_text[m_at];
    if (quote != '"' && quote != '\'') return false;
    const std::size_t end = m_text.find(quote, m_at + 1);
    if (end == std::string::npos) Expected(std::string("a closing ") + quote);
    text = Unescaped(std::string_view(m_text).substr(m_at + 1, end - m_at - 1));
    m_at = end + 1;
    return true;
}

void Scanner::ExpectedAt(std::size_t place, const std::string& what, const std::string& hint) const
{
    const std::size_t at = std::min(m_text.find_first_not_of(kBlanks, place), m_text.size());
    const std::string before = Printable(std::string_view(m_text).substr(0, at));
    const auto column = g_utf8_strlen(before.c_str(), -1) + 1;
    throw Failure(kUsage,
                  "--format: column " + std::to_string(column) + ": expected " + what + ", got " +
                      Start(std::string_view(m_text).substr(at)),
                  hint);
}

/// A recursive-descent parser with one function per grammar rule.
class Parser
{
public:
    Parser(const std::string& text, const std::vector<std::string>& fields) : m_scan(text), m_fields(fields) {}

    std::vector<Format::Piece> All();

private:
    Value Expression();
    Value Piped(Value piped);
    Value Primary();
    Value Number(std::size_t place, const std::string& digits) const;
    Value Named(std::size_t place, const std::string& name);
    Value Called(std::size_t place, const std::string& name);
    const FormatFunction& Function(std::size_t place, const std::string& name) const;
    Value Call(const FormatFunction& function, std::vector<Value> arguments, std::size_t place) const;
    void Close(const char* mark)
    {
        if (!m_scan.TakeAfterBlanks(mark)) m_scan.Expected(mark);
    }

    Scanner m_scan;
    const std::vector<std::string>& m_fields;
    int m_depth = 0;
};

std::vector<Format::Piece> Parser::All()
{
    std::vector<Format::Piece> pieces;
    for (;;)
    {
        pieces.push_back({m_scan.TakeLiteral(), nullptr});
        if (!m_scan.Take("{{")) return pieces;
        pieces.back().value = Expression();
        Close("}}");
    }
}

// The grammar rules are mutually recursive; Called() limits the depth.
// NOLINTBEGIN(misc-no-recursion)
Value Parser::Expression()
{
    Value value = Primary();
    while (m_scan.TakeAfterBlanks("|")) value = Piped(value);
    return value;
}

Value Parser::Piped(Value piped)
{
    const std::size_t place = m_scan.Place();
    const FormatFunction& function = Function(place, m_scan.TakeName());
    std::vector<Value> arguments{std::move(piped)};
    for (const char* before = ":"; m_scan.TakeAfterBlanks(before); before = ",") arguments.push_back(Primary());
    return Call(function, std::move(arguments), place);
}

Value Parser::Primary()
{
    std::string text;
    if (m_scan.TakeQuoted(text)) return [text](const Json&) -> Json { return text; };
    const std::size_t place = m_scan.Place();
    const std::string digits = m_scan.TakeNumber();
    if (!digits.empty()) return Number(place, digits);
    const std::string name = m_scan.TakeName();
    if (name.empty()) m_scan.Expected(kAnExpression);
    return Named(place, name);
}

Value Parser::Number(std::size_t place, const std::string& digits) const
{
    const std::optional<int> number = ParseIndex(digits);
    if (!number) m_scan.ExpectedAt(place, "a number of at most 9 digits");
    return [number](const Json&) -> Json { return *number; };
}

Value Parser::Named(std::size_t place, const std::string& name)
{
    if (m_scan.TakeAfterBlanks("(")) return Called(place, name);
    if (std::find(m_fields.begin(), m_fields.end(), name) == m_fields.end())
        m_scan.ExpectedAt(place, "a field such as title, artist, or state", DidYouMean(name, m_fields, kDescribed));
    return [name](const Json& values) { return values.contains(name) ? values[name] : Json(); };
}

Value Parser::Called(std::size_t place, const std::string& name)
{
    if (++m_depth > kMaxDepth) m_scan.Expected("at most " + std::to_string(kMaxDepth) + " nested functions");
    const FormatFunction& function = Function(place, name);
    std::vector<Value> arguments;
    if (!m_scan.TakeAfterBlanks(")"))
    {
        do
        {
            arguments.push_back(Expression());
        } while (m_scan.TakeAfterBlanks(","));
        Close(")");
    }
    --m_depth;
    return Call(function, std::move(arguments), place);
}

const FormatFunction& Parser::Function(std::size_t place, const std::string& name) const
{
    const FormatFunction* const function = FindFormatFunction(name);
    const std::vector<std::string> names = FormatFunctionNames();
    if (function == nullptr)
        m_scan.ExpectedAt(place, "a function (" + Joined(names, ", ") + ")", DidYouMean(name, names, kDescribed));
    return *function;
}

Value Parser::Call(const FormatFunction& function, std::vector<Value> arguments, std::size_t place) const
{
    if (arguments.size() != function.arguments)
        m_scan.ExpectedAt(place, std::string(function.name) + " with " +
                                     Count(static_cast<int>(function.arguments), "argument", "arguments"));
    return [call = function.call, arguments = std::move(arguments)](const Json& values)
    {
        std::vector<Json> given;
        for (const Value& argument : arguments) given.push_back(argument(values));
        return call(given);
    };
}
// NOLINTEND(misc-no-recursion)
}  // namespace

Format Format::Parse(const std::string& text, const std::vector<std::string>& fields)
{
    return Format(Parser(text, fields).All());
}

std::string Format::Render(const Json& values) const
{
    std::string out;
    for (const Piece& piece : m_pieces) out += piece.text + (piece.value ? Shown(piece.value(values)) : "");
    return out;
}

std::string Shown(const Json& value)
{
    if (value.is_null()) return {};
    return Printable(value.is_string() ? value.get<std::string>() : Dump(value));
}
}  // namespace ctl
