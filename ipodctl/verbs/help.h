/// @file
/// The help of the command line, wrapped to the width of the terminal.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace ctl
{
struct HelpRow
{
    std::string name;
    std::string description;
};

/// Returns a title and its rows, the descriptions in a column of their own and wrapped; nothing without rows.
std::string HelpSection(const char* title, const std::vector<HelpRow>& rows, int width);

class HelpFormatter : public CLI::FormatterBase
{
public:
    /// @param width  columns to wrap to, at least 40 and at most 100 of them
    explicit HelpFormatter(int width);

    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;

private:
    int m_width;
};
}  // namespace ctl
