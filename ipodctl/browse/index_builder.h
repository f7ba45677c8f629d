/// @file
/// Builds indexes of names on another thread.
#pragma once

#include <ipodnames/jump_index.h>

#include <functional>
#include <string>
#include <vector>

namespace ctl::browse
{
/// Lives on the thread of the default context.
class IndexBuilder
{
public:
    using Completion = std::function<void(const ipodnames::JumpIndex&)>;

    IndexBuilder() = default;

    /// Waits for what is being built; its completions run.
    ~IndexBuilder();
    IndexBuilder(const IndexBuilder&) = delete;
    IndexBuilder& operator=(const IndexBuilder&) = delete;

    /// Calls @p completion in the default context. @p readings: of the first names, as far as they are known.
    void Build(std::vector<std::string> names, std::vector<std::string> readings, Completion completion);

private:
    struct Job;
    int m_running = 0;
};
}  // namespace ctl::browse
