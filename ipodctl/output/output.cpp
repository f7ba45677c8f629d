#include "output/output.h"

#include <glib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
constexpr int kUsualWidth = 80;
constexpr int kUsualHeight = 24;

bool IsDumb()
{
    const char* const term = std::getenv("TERM");
    return term != nullptr && std::strcmp(term, "dumb") == 0;
}

bool WantsColor()
{
    const char* const noColor = std::getenv("NO_COLOR");
    return noColor == nullptr || *noColor == '\0';
}

// Follows the precedence of setlocale() without loading a locale.
bool HasUtf8Locale()
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
    {
        const char* const value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        const std::string locale = Folded(value);
        return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
    }
    return false;
}

const char* Code(Color color)
{
    switch (color)
    {
        case Color::Bold:
            return "\033[1m";
        case Color::Dim:
            return "\033[2m";
        case Color::Red:
            return "\033[31m";
        case Color::Green:
            return "\033[32m";
        case Color::Yellow:
            return "\033[33m";
        case Color::Cyan:
            return "\033[36m";
    }
    return "";
}

std::string Escaped(gunichar code)
{
    char text[8];
    g_snprintf(text, sizeof(text), "\\u%04x", code);
    return text;
}
}  // namespace

FILE* AnswerStream()
{
    static FILE* const standardOutput = stdout;
    return standardOutput;
}

void ReserveStandardOutput()
{
    AnswerStream();
    stdout = stderr;
}

Output::Output(bool json, ColorUse colors)
    : m_json(json),
      m_terminal(isatty(STDOUT_FILENO) == 1),
      m_dumb(m_terminal && IsDumb()),
      m_color(!json && (colors == ColorUse::Auto ? m_terminal && !m_dumb && WantsColor() : colors == ColorUse::Always)),
      m_utf8(m_terminal && HasUtf8Locale())
{
    Measure();
}

void Output::Measure()
{
    if (!m_terminal) return;
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    m_width = known ? size.ws_col : kUsualWidth;
    m_height = known ? size.ws_row : kUsualHeight;
}

std::string Output::Paint(Color color, const std::string& text) const
{
    return m_color ? Code(color) + text + "\033[0m" : text;
}

void Output::Line(const Json& json, const std::string& text)
{
    if (m_json)
        Text(Dump(json) + "\n");
    else if (!text.empty())
        Text(EndTransient() + text + "\n");
}

void Output::Transient(const std::string& text)
{
    m_transient = true;
    Text("\r\033[K" + text);
}

void Output::Finish()
{
    if (m_transient) Text("\n");
    m_transient = false;
}

std::string Output::EndTransient()
{
    const bool clear = m_transient;
    m_transient = false;
    return clear ? "\r\033[K" : "";
}

void Output::Raw(const void* data, std::size_t size)
{
    FILE* const answers = AnswerStream();
    if (std::fwrite(data, 1, size, answers) == size && std::fflush(answers) == 0) return;
    if (errno == EPIPE) throw OutputClosed{};
    RefuseOutput(errno);
}

void RefuseOutput(int error)
{
    throw Failure(kNoOutput, std::string("cannot write to standard output: ") + std::strerror(error));
}

// dump() escapes control characters below U+0020. Other unsafe characters can occur only inside strings, where \u
// escapes are valid.
std::string Dump(const Json& json)
{
    const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string safe;
    for (const char* at = text.c_str(); *at != '\0'; at = g_utf8_next_char(at))
    {
        const gunichar code = g_utf8_get_char(at);
        safe += IsUnsafe(code) ? Escaped(code) : std::string(at, static_cast<const char*>(g_utf8_next_char(at)));
    }
    return safe;
}

namespace
{
std::string Written(GDateTime* time, const char* format)
{
    gchar* const text = g_date_time_format(time, format);
    std::string result = text;
    g_free(text);
    return result;
}
}  // namespace

Moment Moment::Now()
{
    return At(g_get_real_time());
}

Moment Moment::At(std::int64_t microseconds)
{
    GDateTime* const time = g_date_time_new_from_unix_local(microseconds / G_USEC_PER_SEC);
    char fraction[8];
    g_snprintf(fraction, sizeof(fraction), ".%03d", static_cast<int>(microseconds % G_USEC_PER_SEC / 1000));
    Moment moment{Written(time, "%FT%T") + fraction + Written(time, "%:z"), Written(time, "%T") + fraction};
    g_date_time_unref(time);
    return moment;
}

void ReportService(Output& out, bool line, const char* state, const std::string& what)
{
    const Moment now = Moment::Now();
    if (line) return out.Line({{"time", now.full}, {"event", "service"}, {"state", state}, {"text", what}}, "");
    out.Finish();
    std::fprintf(stderr, "ipodctl: %s  %s\n", now.clock.c_str(), Printable(what).c_str());
}

namespace
{
using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void Refuse(const char* what, const std::string& path, ExitCode code = kUsage)
{
    throw Failure(code, std::string("cannot ") + what + " '" + Printable(path) + "': " + std::strerror(errno));
}

[[noreturn]] void RefuseLength(const std::string& path, std::size_t most)
{
    throw Failure(kUsage, "cannot use '" + Printable(path) + "': it is longer than " + std::to_string(most) + " bytes");
}

int LeaveOpen(std::FILE*)
{
    return 0;
}

File Open(const std::string& path)
{
    return path == "-" ? File(stdin, LeaveOpen) : File(std::fopen(path.c_str(), "rbe"), std::fclose);
}
}  // namespace

std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most)
{
    const File file = Open(path);
    if (!file) Refuse("read", path);
    std::vector<unsigned char> bytes;
    unsigned char block[4096];
    while (const std::size_t got = std::fread(block, 1, sizeof(block), file.get()))
    {
        bytes.insert(bytes.end(), block, block + got);
        if (bytes.size() > most) RefuseLength(path, most);
    }
    if (std::ferror(file.get()) != 0) Refuse("read", path);
    return bytes;
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes)
{
    std::FILE* const file = std::fopen(path.c_str(), "wbe");
    if (file == nullptr) Refuse("write", path);
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written) Refuse("write", path, kNoOutput);
}

std::string FileIn(const std::string& path, const char* name, const char* extension)
{
    const std::filesystem::path given(path);
    std::error_code ignored;
    const bool folder = !given.has_filename() || std::filesystem::is_directory(given, ignored);
    if (folder) return (given / name).string() + extension;
    // Use an existing special file such as /dev/null under its exact name.
    const auto there = std::filesystem::status(given, ignored);
    const bool special = std::filesystem::exists(there) && !std::filesystem::is_regular_file(there);
    return given.has_extension() || special ? path : path + extension;
}
}  // namespace ctl
