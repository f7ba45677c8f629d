#include "configuration.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <stdexcept>

namespace
{
constexpr char kDefaultFormat[] = "%d %V [%p:%F:%L] %m%n";

std::smatch Matched(const std::string& line, const char* pattern)
{
    std::smatch found;
    if (!std::regex_match(line, found, std::regex(pattern))) throw std::invalid_argument("invalid line " + line);
    return found;
}

std::shared_ptr<int> Opened(const std::string& output, const std::string& path)
{
    if (output == ">stdout") return std::make_shared<int>(STDOUT_FILENO);
    if (output == ">stderr") return std::make_shared<int>(STDERR_FILENO);
    const int out = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (out < 0) throw std::invalid_argument("cannot open " + path);
    return {new int(out), [](const int* number)
            {
                close(*number);
                delete number;
            }};
}

void ReadLevel(Configuration& read, const std::string& line)
{
    const std::smatch found = Matched(line, R"((\w+)\s*=\s*(\d+)(?:\s*,.*)?)");
    read.levels[found.str(1)] = std::stoi(found.str(2));
}

void ReadFormat(Configuration& read, const std::string& line)
{
    const std::smatch found = Matched(line, R"re((\w+)\s*=\s*"(.*)")re");
    read.formats[found.str(1)] = ParseFormat(found.str(2));
}

void ReadRule(Configuration& read, const std::string& line)
{
    const std::smatch found = Matched(
        line, R"re(([\w*]+)\.([=!]?)(\w+|\*)\s+(>stdout|>stderr|-?"([^"%;,]+)"(?:\s*,[^;]*)?)\s*(?:;\s*(\w+))?)re");
    const std::string comparison = found.str(2);
    const Format format = found[6].matched ? read.formats.at(found.str(6)) : ParseFormat(kDefaultFormat);
    read.rules.push_back({found.str(1), comparison.empty() ? '>' : comparison[0], read.levels.at(found.str(3)),
                          Opened(found.str(4), found.str(5)), format});
}

void Ignore(Configuration&, const std::string&) {}

using Reader = void (*)(Configuration&, const std::string&);

const std::map<std::string, Reader> kSections = {
    {"[global]", Ignore}, {"[levels]", ReadLevel}, {"[formats]", ReadFormat}, {"[rules]", ReadRule}};

std::string Trimmed(const std::string& line)
{
    static constexpr char kBlank[] = " \t\r";
    const std::size_t begin = line.find_first_not_of(kBlank);
    return begin == std::string::npos ? "" : line.substr(begin, line.find_last_not_of(kBlank) - begin + 1);
}
}  // namespace

bool Rule::Fits(const std::string& name, int ofRecord) const
{
    const bool family = category.back() == '_' && (name + '_').compare(0, category.size(), category) == 0;
    if (category != "*" && category != name && !family) return false;
    return comparison == '>' ? ofRecord >= level : (ofRecord == level) == (comparison == '=');
}

std::string Configuration::NameOf(int level) const
{
    for (const auto& [name, number] : levels)
        if (number == level) return name;
    return "UNKNOWN";
}

Configuration ReadConfiguration(const std::string& path)
{
    std::ifstream file(path);
    if (!file) throw std::invalid_argument("cannot read " + path);
    Configuration read;
    Reader reader = nullptr;
    for (std::string line; std::getline(file, line);)
    {
        line = Trimmed(line);
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == '[')
            reader = kSections.at(line);
        else if (reader == nullptr)
            throw std::invalid_argument("line outside of a section: " + line);
        else
            reader(read, line);
    }
    return read;
}
