/// @file
/// The answer of a verb, and how it reaches standard output: as text, or as one JSON object per line.
#pragma once

#include <nlohmann/json.hpp>

#include <climits>
#include <cstdio>
#include <string>

#include "output/failure.h"

namespace ctl
{
using Json = nlohmann::ordered_json;

/// What a verb has to say, in both forms; the text has no newline at its end.
struct Answer
{
    Json json;
    std::string text;
    ExitCode code = kDone;  ///< what the run ends with
};

/// Thrown when nobody reads the output any more: this is not an error.
struct OutputClosed
{
};

enum class Colour
{
    Bold,
    Dim,
    Green,
    Cyan,
};

/// The stream of the answers.
FILE* AnswerStream();

/// Keeps standard output for the answers: from now on, `stdout` is standard error. The library prints a line to
/// `stdout` for each record while logging is not set up.
void ReserveStandardOutput();

/// Standard output. Colours and widths only where it is a terminal.
class Output
{
public:
    explicit Output(bool json);

    bool json() const { return m_json; }
    bool terminal() const { return m_terminal; }

    /// Whether the terminal understands text only: TERM=dumb.
    bool dumb() const { return m_dumb; }

    /// Columns and rows of the terminal; very large numbers when it is none.
    int width() const { return m_width; }
    int height() const { return m_height; }

    bool colour() const { return m_colour; }

    /// Whether the terminal shows more than ASCII. Without a terminal false, for those who read what is written.
    bool utf8() const { return m_utf8; }

    /// Looks at the size of the terminal again.
    void Measure();

    /// The text in a colour, or as it is where colour is not wanted (no terminal, NO_COLOR, TERM=dumb).
    std::string Paint(Colour colour, const std::string& text) const;

    /// Writes one line and sees to it that it has arrived.
    /// @throws OutputClosed, Failure when it cannot be written
    void Line(const Json& json, const std::string& text);

    /// Writes text as it is, and sees to it that it has arrived.
    void Text(const std::string& text) { Raw(text.data(), text.size()); }

    /// Replaces the last line of the terminal until the next Line(). For terminals only.
    void Transient(const std::string& text);

    /// Leaves the line of Transient() standing and goes to the next one.
    void Finish();

    /// Writes bytes as they are.
    void Raw(const void* data, std::size_t size);

private:
    std::string EndTransient();

    bool m_json;
    bool m_terminal;
    bool m_dumb;
    bool m_colour;
    bool m_utf8;
    bool m_transient = false;
    int m_width = INT_MAX;
    int m_height = INT_MAX;
};

/// @throws Failure  standard output takes no more, for this reason of errno
[[noreturn]] void RefuseOutput(int error);

/// A JSON value on one line, safe to show: invalid UTF-8 replaced, unsafe characters escaped.
std::string Dump(const Json& json);

/// A local time.
struct Moment
{
    std::string full;   ///< "2026-11-21T10:12:42.123+01:00"
    std::string clock;  ///< "10:12:42.123"

    static Moment Now();
};

constexpr char kServiceIsThere[] = "the iPod service is there; following its events";
constexpr char kServiceLeft[] = "the iPod service left the bus; waiting for it to come back";

/// For people on standard error; for programs a line of the same kind as the events.
///
/// @param line  whether programs read lines of JSON
void TellOfService(Output& out, bool line, const char* state, const std::string& what);
}  // namespace ctl
