/// @file
/// The configuration file: sections `[global]` (accepted and ignored), `[levels]`, `[formats]` and `[rules]`. Files
/// have constant names and are not rotated.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "format.h"

/// A line such as `ipod.INFO "/tmp/ipod.log", 1MB * 3; line`.
struct Rule
{
    std::string category;  ///< "*" matches every category; "ipod_" matches "ipod" and "ipod_kit"
    char comparison;       ///< '>' this level and above, '=' this level, '!' every other level
    int level;
    std::shared_ptr<int> out;  ///< closed with the last rule
    Format format;

    bool Fits(const std::string& name, int ofRecord) const;
};

struct Configuration
{
    std::map<std::string, int> levels{{"*", 0},     {"DEBUG", 20},  {"INFO", 40},  {"NOTICE", 60},
                                      {"WARN", 80}, {"ERROR", 100}, {"FATAL", 120}};
    std::map<std::string, Format> formats;
    std::vector<Rule> rules;

    std::string NameOf(int level) const;
};

/// @throws std::exception  for an unreadable file or an invalid line
Configuration ReadConfiguration(const std::string& path);
