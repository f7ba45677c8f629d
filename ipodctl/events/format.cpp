#include "events/format.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "events/format_scanner.h"
#include "events/format_value.h"
#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
constexpr int kDeepest = 50;
constexpr char kAnExpression[] = "a field, a function, a number, a quoted text or (";

using Value = std::function<Json(const Json& values)>;

void RenderAll(const Format::Pieces& pieces, const Json& values, std::string& out)
{
    for (const Format::Piece& piece : pieces) piece(values, out);
}

/// By recursive descent: one function per rule of the grammar.
class Parser
{
public:
    Parser(const std::string& text, const std::vector<std::string>& fields) : m_scan(text), m_fields(fields) {}

    Format::Pieces All()
    {
        Format::Pieces pieces = Template();
        if (!m_scan.AtEnd()) m_scan.Expected("{% if … %}");
        return pieces;
    }

private:
    // Nesting costs stack.
    class Level
    {
    public:
        explicit Level(Parser& parser) : m_depth(parser.m_depth)
        {
            if (++m_depth > kDeepest) parser.m_scan.Expected("fewer levels");
        }
        ~Level() { --m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        int& m_depth;
    };

    Format::Pieces Template();
    bool TakeTag(Format::Pieces& pieces);
    bool TakeTagOf(const char* word);
    Format::Piece Condition();
    Format::Pieces Else();
    Value Expression() { return Joined("or", &Parser::And, false); }
    Value And() { return Joined("and", &Parser::Not, true); }
    Value Joined(const char* word, Value (Parser::*part)(), bool all);
    Value Not();
    Value Comparison();
    Value Pipe();
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

    FormatScanner m_scan;
    const std::vector<std::string>& m_fields;
    int m_depth = 0;
};

// The rules call each other; Level ends what goes too deep.
// NOLINTBEGIN(misc-no-recursion)

// Ends before a tag that belongs to a condition around it.
Format::Pieces Parser::Template()
{
    const Level level(*this);
    Format::Pieces pieces;
    do
    {
        const std::string text = m_scan.TakeLiteral();
        if (!text.empty()) pieces.push_back([text](const Json&, std::string& out) { out += text; });
    } while (TakeTag(pieces));
    return pieces;
}

bool Parser::TakeTag(Format::Pieces& pieces)
{
    if (m_scan.Take("{{"))
    {
        const Value value = Expression();
        Close("}}");
        pieces.push_back([value](const Json& values, std::string& out) { out += Shown(value(values)); });
        return true;
    }
    const std::size_t tag = m_scan.Place();
    if (!m_scan.Take("{%")) return false;
    if (m_scan.TakeWord("if"))
    {
        pieces.push_back(Condition());
        return true;
    }
    m_scan.Return(tag);
    return false;
}

bool Parser::TakeTagOf(const char* word)
{
    const std::size_t tag = m_scan.Place();
    if (m_scan.Take("{%") && m_scan.TakeWord(word)) return true;
    m_scan.Return(tag);
    return false;
}

// What stands between "if" and "end".
Format::Piece Parser::Condition()
{
    const Value condition = Expression();
    Close("%}");
    const Format::Pieces then = Template();
    const Format::Pieces otherwise = Else();
    return [condition, then, otherwise](const Json& values, std::string& out)
    { RenderAll(IsTrue(condition(values)) ? then : otherwise, values, out); };
}

Format::Pieces Parser::Else()
{
    if (TakeTagOf("elif"))
    {
        const Level level(*this);
        return {Condition()};
    }
    Format::Pieces pieces;
    if (TakeTagOf("else"))
    {
        Close("%}");
        pieces = Template();
    }
    if (!TakeTagOf("end")) m_scan.Expected("{% end %}");
    Close("%}");
    return pieces;
}

Value Parser::Joined(const char* word, Value (Parser::*part)(), bool all)
{
    std::vector<Value> parts{(this->*part)()};
    while (m_scan.TakeWord(word)) parts.push_back((this->*part)());
    if (parts.size() == 1) return parts[0];
    return [parts, all](const Json& values) -> Json
    {
        const auto holds = [&](const Value& value) { return IsTrue(value(values)); };
        return all ? std::all_of(parts.begin(), parts.end(), holds) : std::any_of(parts.begin(), parts.end(), holds);
    };
}

Value Parser::Not()
{
    if (!m_scan.TakeWord("not")) return Comparison();
    const Level level(*this);
    const Value value = Not();
    return [value](const Json& values) -> Json { return !IsTrue(value(values)); };
}

Value Parser::Comparison()
{
    Value one = Pipe();
    for (const char* comparison : {"==", "!=", "<=", ">=", "<", ">"})
    {
        if (!m_scan.TakeAfterBlanks(comparison)) continue;
        const Value other = Pipe();
        return [one, comparison, other](const Json& values) -> Json
        { return Compare(one(values), comparison, other(values)); };
    }
    return one;
}

Value Parser::Pipe()
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
    const Level level(*this);
    std::string text;
    if (m_scan.TakeQuoted(text)) return [text](const Json&) -> Json { return text; };
    const std::size_t place = m_scan.Place();
    const std::string digits = m_scan.TakeNumber();
    if (!digits.empty()) return Number(place, digits);
    const std::string name = m_scan.TakeName();
    if (!name.empty()) return Named(place, name);
    if (!m_scan.TakeAfterBlanks("(")) m_scan.Expected(kAnExpression);
    Value value = Expression();
    Close(")");
    return value;
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
        m_scan.ExpectedAt(place,
                          "a field such as title, artist, state or event; ipodctl(1) lists them under TEMPLATES");
    return [name](const Json& values) { return values.contains(name) ? values[name] : Json(); };
}

Value Parser::Called(std::size_t place, const std::string& name)
{
    const FormatFunction& function = Function(place, name);
    std::vector<Value> arguments;
    if (!m_scan.TakeAfterBlanks(")"))
    {
        do arguments.push_back(Expression());
        while (m_scan.TakeAfterBlanks(","));
        Close(")");
    }
    return Call(function, std::move(arguments), place);
}

const FormatFunction& Parser::Function(std::size_t place, const std::string& name) const
{
    const FormatFunction* const function = FindFormatFunction(name);
    if (function == nullptr) m_scan.ExpectedAt(place, "a function (" + FormatFunctionNames() + ")");
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
    RenderAll(m_pieces, values, out);
    return out;
}
}  // namespace ctl
