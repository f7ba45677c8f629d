/// @file
/// Builds jump indexes on a worker thread.
#pragma once

#include <ipodnames/jump_index.h>

#include <functional>
#include <string>
#include <vector>

namespace ctl::browse
{
/// Use it only on the thread that runs the default main context.
class IndexBuilder
{
public:
    using Completion = std::function<void(const ipodnames::JumpIndex&)>;

    IndexBuilder() = default;

    /// Blocks until all builds have finished and their completions have run.
    ~IndexBuilder();
    IndexBuilder(const IndexBuilder&) = delete;
    IndexBuilder& operator=(const IndexBuilder&) = delete;

    /// Starts a build and returns at once.
    /// @param readings    readings of the first names; the index derives the others
    /// @param completion  called in the default main context
    void Build(std::vector<std::string> names, std::vector<std::string> readings, Completion completion);

private:
    struct Job;
    int m_running = 0;
};
}  // namespace ctl::browse
