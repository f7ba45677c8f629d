#include "format.h"

#include <unistd.h>

#include <ctime>
#include <functional>
#include <map>
#include <regex>
#include <stdexcept>

namespace
{
std::string Time(const Record& record, const std::string& format)
{
    tm local{};
    localtime_r(&record.time.tv_sec, &local);
    char text[256];
    return {text, std::strftime(text, sizeof(text), format.c_str(), &local)};
}

std::string Digits(long number, std::size_t count)
{
    const std::string text = std::to_string(number);
    return text.size() < count ? std::string(count - text.size(), '0') + text : text;
}

const std::map<std::string, std::function<std::string(const Record&)>> kConversions = {
    {"c", [](const Record& record) { return record.category; }},
    {"F", [](const Record& record) { return record.file; }},
    // The part after the last slash.
    {"f", [](const Record& record) { return record.file.substr(record.file.rfind('/') + 1); }},
    {"L", [](const Record& record) { return std::to_string(record.line); }},
    {"m", [](const Record& record) { return record.message; }},
    {"ms", [](const Record& record) { return Digits(record.time.tv_usec / 1000, 3); }},
    {"n", [](const Record&) { return std::string("\n"); }},
    {"p", [](const Record&) { return std::to_string(getpid()); }},
    {"U", [](const Record& record) { return record.function; }},
    {"us", [](const Record& record) { return Digits(record.time.tv_usec, 6); }},
    {"V", [](const Record& record) { return record.level; }},
    {"%", [](const Record&) { return std::string("%"); }},
};

std::string Convert(const std::string& conversion, const Record& record)
{
    if (conversion == "d") return Time(record, "%F %T");
    if (conversion[0] == 'd') return Time(record, conversion.substr(2, conversion.size() - 3));
    return kConversions.at(conversion)(record);
}

std::string Padded(const std::string& text, const std::string& width)
{
    if (width.empty()) return text;
    const std::size_t wanted = std::stoul(width[0] == '-' ? width.substr(1) : width);
    const std::string gap(text.size() < wanted ? wanted - text.size() : 0, ' ');
    return width[0] == '-' ? text + gap : gap + text;
}
}  // namespace

Format ParseFormat(const std::string& text)
{
    static const std::regex kPiece(R"(([^%]*)(?:%(-?\d+)?(d\([^)]*\)|d|ms|us|[cFfLmnpUV%]))?)");
    Format format;
    for (auto at = text.cbegin(); at != text.cend();)
    {
        std::smatch found;
        std::regex_search(at, text.cend(), found, kPiece, std::regex_constants::match_continuous);
        if (found.length() == 0) throw std::invalid_argument("unknown conversion in format " + text);
        format.push_back({found.str(1), found.str(2), found.str(3)});
        at = found[0].second;
    }
    return format;
}

std::string Print(const Format& format, const Record& record)
{
    std::string line;
    for (const Piece& piece : format)
    {
        line += piece.text;
        if (!piece.conversion.empty()) line += Padded(Convert(piece.conversion, record), piece.width);
    }
    return line;
}
