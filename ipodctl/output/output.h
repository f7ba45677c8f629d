/// @file
/// Writes the answers of verbs to standard output, as text or as one JSON object per line.
#pragma once

#include <nlohmann/json.hpp>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "output/failure.h"

namespace ctl
{
using Json = nlohmann::ordered_json;

/// The result of a verb as JSON and as text without a trailing newline.
struct Answer
{
    Json json;
    std::string text;
    ExitCode code = kDone;  ///< exit code of the run
};

/// Thrown when the reader of standard output closes it. Not an error: the program exits with 0.
struct OutputClosed
{
};

enum class Color
{
    Bold,
    Dim,
    Red,
    Green,
    Yellow,
    Cyan,
};

enum class ColorUse
{
    Auto,  ///< on a terminal other than TERM=dumb, unless NO_COLOR is set
    Always,
    Never,
};

/// Returns the original standard output stream.
FILE* AnswerStream();

/// Reserves standard output for answers by pointing `stdout` at standard error. Until logging is set up, the library
/// prints a line to `stdout` for each log record.
void ReserveStandardOutput();

/// Standard output. Limits line widths only on a terminal.
class Output
{
public:
    /// @param colors  whether to color text; JSON is never colored
    explicit Output(bool json, ColorUse colors = ColorUse::Auto);

    bool json() const { return m_json; }
    bool terminal() const { return m_terminal; }

    /// Returns whether standard output is a terminal without control sequences (TERM=dumb).
    bool dumb() const { return m_dumb; }

    /// Size of the terminal in columns and rows; INT_MAX if standard output is not a terminal.
    int width() const { return m_width; }
    int height() const { return m_height; }

    bool color() const { return m_color; }

    /// Returns whether standard output is a terminal and the locale is UTF-8. Progress bars in piped output are ASCII.
    bool utf8() const { return m_utf8; }

    /// Updates the terminal size.
    void Measure();

    /// Returns the text in a color, or unchanged if colors are not used.
    std::string Paint(Color color, const std::string& text) const;

    /// Writes and flushes one line: @p json or @p text, depending on the output format. Skips empty text.
    /// @throws OutputClosed  if the reader closed standard output
    /// @throws Failure       kNoOutput if writing fails
    void Line(const Json& json, const std::string& text);

    /// Writes text unchanged and flushes it. Throws like Line().
    void Text(const std::string& text) { Raw(text.data(), text.size()); }

    /// Replaces the current terminal line until the next Line(). For terminals only.
    void Transient(const std::string& text);

    /// If Transient() wrote a line, keeps it and starts a new one.
    void Finish();

    /// Writes bytes unchanged and flushes them. Throws like Line().
    void Raw(const void* data, std::size_t size);

private:
    std::string EndTransient();

    bool m_json;
    bool m_terminal;
    bool m_dumb;
    bool m_color;
    bool m_utf8;
    bool m_transient = false;
    int m_width = INT_MAX;
    int m_height = INT_MAX;
};

/// Reports a failed write to standard output.
/// @param error  the value of errno
/// @throws Failure  kNoOutput
[[noreturn]] void RefuseOutput(int error);

/// Serializes JSON to one line that is safe for terminals: replaces invalid UTF-8, escapes unsafe characters.
std::string Dump(const Json& json);

/// A point in local time, formatted.
struct Moment
{
    std::string full;   ///< "2026-11-21T10:12:42.123+01:00"
    std::string clock;  ///< "10:12:42.123"

    static Moment Now();
    static Moment At(std::int64_t microseconds);  ///< since 1970
};

constexpr char kServiceIsThere[] = "connected to the iPod service; following its events";
constexpr char kServiceLeft[] = "the iPod service left the bus; waiting for its return";

/// Reports a change of the service: as text on standard error, or as a JSON line like those of events.
///
/// @param line  whether to write a JSON line to standard output instead of text to standard error
void ReportService(Output& out, bool line, const char* state, const std::string& what);

/// Default size limit in bytes: far above the capacity of the shared memory, and bounds endless files.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

/// Returns the contents of a file, or of standard input for "-".
/// @throws Failure  kUsage if it cannot be read or exceeds @p most bytes
std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most = kMostBytes);

/// Creates or truncates a file and writes @p bytes to it.
/// @throws Failure  kUsage if it cannot be opened, kNoOutput if it cannot be written
void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes);

/// Returns the path of the file to write.
/// If @p path is an existing folder or ends with a slash, this is the file @p name plus @p extension inside it.
/// Special files and paths with an extension are returned unchanged; @p extension is appended to all others.
std::string FileIn(const std::string& path, const char* name, const char* extension);
}  // namespace ctl
