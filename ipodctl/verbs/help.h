/// @file
/// The help of the command line, wrapped to the width of the terminal.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace ctl
{
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
