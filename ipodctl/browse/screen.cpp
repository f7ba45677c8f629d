#include "browse/screen.h"

#define NCURSES_NOMACROS 1
#include <curses.h>
#include <glib.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "output/failure.h"
#include "output/output.h"
#include "output/text.h"

namespace ctl::browse
{
namespace
{
constexpr std::array kCrashSignals{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS};

// Prepared in advance: a signal handler may call only async-signal-safe functions.
std::array<struct sigaction, kCrashSignals.size()> previousActions;
termios modes;
bool haveModes = false;
std::array<char, 256> resetSequence;
std::size_t resetLength = 0;

// Lets the handler run after a stack overflow.
std::array<char, 65536> alternateStack;
stack_t previousStack;

void RestoreHandlers()
{
    for (std::size_t i = 0; i < kCrashSignals.size(); ++i) sigaction(kCrashSignals[i], &previousActions[i], nullptr);
}

void OnCrashSignal(int signal)
{
    RestoreHandlers();
    [[maybe_unused]] const ssize_t ignored = write(STDOUT_FILENO, resetSequence.data(), resetLength);
    if (haveModes) tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    raise(signal);
}
}  // namespace

CrashGuard::CrashGuard()
{
    haveModes = tcgetattr(STDIN_FILENO, &modes) == 0;
    resetLength = 0;
    stack_t stack{};
    stack.ss_sp = alternateStack.data();
    stack.ss_size = alternateStack.size();
    sigaltstack(&stack, &previousStack);
    struct sigaction action
    {
    };
    action.sa_handler = OnCrashSignal;
    action.sa_flags = SA_NODEFER | SA_ONSTACK;
    for (std::size_t i = 0; i < kCrashSignals.size(); ++i) sigaction(kCrashSignals[i], &action, &previousActions[i]);
}

CrashGuard::~CrashGuard()
{
    RestoreHandlers();
    sigaltstack(&previousStack, nullptr);
}

void CrashGuard::SetResetSequence(std::string_view text)
{
    resetLength = std::min(text.size(), resetSequence.size());
    std::copy_n(text.begin(), resetLength, resetSequence.begin());
}

namespace
{
constexpr int kEscapeDelay = 25;
constexpr wchar_t kReplacement = 0xFFFD;

enum Pair : short
{
    kTitlePair = 1,
    kStrongPair,
    kPlayingPair,
    kWarningPair,
};

// All text is UTF-8, regardless of the locale.
void UseUtf8()
{
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

std::string TypeOfTerminal()
{
    const char* const type = std::getenv("TERM");
    return type == nullptr ? "" : type;
}

// Removes padding delays, which current terminals do not need.
std::string Capability(const char* name)
{
    const char* const text = tigetstr(name);
    constexpr std::intptr_t kNoString = -1;
    if (text == nullptr || reinterpret_cast<std::intptr_t>(text) == kNoString) return {};
    std::string plain = text;
    for (std::size_t begin = plain.find("$<"); begin != std::string::npos; begin = plain.find("$<"))
    {
        const std::size_t end = plain.find('>', begin);
        plain.erase(begin, end == std::string::npos ? end : end - begin + 1);
    }
    return plain;
}

SCREEN* OpenScreen()
{
    UseUtf8();
    SCREEN* const screen = newterm(nullptr, AnswerStream(), stdin);
    if (screen != nullptr && !Capability("cup").empty()) return screen;
    if (screen != nullptr)
    {
        endwin();
        delscreen(screen);
    }
    throw Failure(kUsage, "browse cannot use a terminal of type '" + Printable(TypeOfTerminal()) + "'",
                  "set TERM, for example to 'xterm'");
}

// Returns false if the terminal has no colors.
bool DefineColors()
{
    if (!has_colors() || start_color() == ERR) return false;
    use_default_colors();
    init_pair(kTitlePair, COLOR_WHITE, COLOR_BLUE);
    init_pair(kStrongPair, COLOR_CYAN, -1);
    init_pair(kPlayingPair, COLOR_GREEN, -1);
    init_pair(kWarningPair, COLOR_YELLOW, -1);
    return true;
}

void Prepare()
{
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(kEscapeDelay);
    curs_set(0);
}

struct StyleAttributes
{
    Style style;
    attr_t attributes;
    short pair;  // 0: the terminal's default colors
};

constexpr StyleAttributes kStyles[] = {{Style::Plain, A_NORMAL, 0},           {Style::Title, A_BOLD, kTitlePair},
                                       {Style::Selected, A_REVERSE, 0},       {Style::Dim, A_DIM, 0},
                                       {Style::Strong, A_BOLD, kStrongPair},  {Style::Playing, A_NORMAL, kPlayingPair},
                                       {Style::Warning, A_BOLD, kWarningPair}};

void SetStyle(Style style, bool colors)
{
    const StyleAttributes& attributes = kStyles[static_cast<std::size_t>(style)];
    const attr_t instead = style == Style::Title ? A_REVERSE : A_NORMAL;
    attr_set(attributes.attributes | (colors ? A_NORMAL : instead), colors ? attributes.pair : static_cast<short>(0),
             nullptr);
}

// A character of unknown width would shift the rest of the line.
std::wstring Wide(const std::string& text)
{
    std::wstring wide;
    for (const char* at = text.c_str(); *at != '\0'; at = g_utf8_next_char(at))
    {
        const auto character = static_cast<wchar_t>(g_utf8_get_char(at));
        wide += wcwidth(character) < 0 ? kReplacement : character;
    }
    return wide;
}

struct KeyCode
{
    wint_t code;
    Key key;
};

constexpr KeyCode kFunctionKeys[] = {{KEY_UP, Key::Up},        {KEY_DOWN, Key::Down},
                                     {KEY_PPAGE, Key::PageUp}, {KEY_NPAGE, Key::PageDown},
                                     {KEY_HOME, Key::Home},    {KEY_END, Key::End},
                                     {KEY_LEFT, Key::Left},    {KEY_RIGHT, Key::Right},
                                     {KEY_ENTER, Key::Enter},  {KEY_BACKSPACE, Key::Backspace}};

// Return and line feed, Ctrl-H and delete, Ctrl-L, escape.
constexpr KeyCode kControlKeys[] = {{13, Key::Enter},      {10, Key::Enter},   {8, Key::Backspace},
                                    {127, Key::Backspace}, {12, Key::Refresh}, {27, Key::Escape}};

template <std::size_t N>
std::optional<KeyPress> KeyFor(const KeyCode (&keys)[N], wint_t code)
{
    const auto* const found =
        std::find_if(std::begin(keys), std::end(keys), [code](const KeyCode& key) { return key.code == code; });
    return found == std::end(keys) ? std::nullopt : std::optional<KeyPress>({found->key, {}});
}

std::optional<KeyPress> Character(wint_t code)
{
    if (IsUnsafe(code) || g_unichar_validate(code) == FALSE) return KeyFor(kControlKeys, code);
    char text[8];
    return KeyPress{Key::Text, std::string(text, static_cast<std::size_t>(g_unichar_to_utf8(code, text)))};
}
}  // namespace

void RequireTerminal()
{
    if (isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) return;
    throw Failure(kUsage, "browse requires a terminal on standard input and output", "use 'ipodctl ls' instead");
}

Screen::Screen(bool colors) : m_screen(OpenScreen())
{
    CrashGuard::SetResetSequence(Capability("sgr0") + Capability("rmkx") + Capability("cnorm") + Capability("rmcup"));
    Prepare();
    m_colors = colors && DefineColors();
    Resize();
}

Screen::~Screen()
{
    endwin();
    delscreen(m_screen);
}

int Screen::Rows() const
{
    return getmaxy(stdscr);
}

int Screen::Columns() const
{
    return getmaxx(stdscr);
}

void Screen::Resize()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
        resizeterm(size.ws_row, size.ws_col);
    RedrawAll();
}

std::optional<KeyPress> Screen::Read()
{
    wint_t code = 0;
    for (int kind = get_wch(&code); kind != ERR; kind = get_wch(&code))
        if (auto press = kind == KEY_CODE_YES ? KeyFor(kFunctionKeys, code) : Character(code)) return press;
    return std::nullopt;
}

void Screen::Paint(const Frame& frame) const
{
    erase();
    for (std::size_t row = 0; row < frame.size(); ++row)
        for (const Span& span : frame[row])
        {
            SetStyle(span.style, m_colors);
            mvaddwstr(static_cast<int>(row), span.column, Wide(span.text).c_str());
        }
    refresh();
}

void Screen::Release()
{
    endwin();
}

void Screen::RedrawAll()
{
    clearok(stdscr, TRUE);
}
}  // namespace ctl::browse
