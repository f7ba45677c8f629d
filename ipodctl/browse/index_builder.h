/// @file
/// Builds indexes of names on another thread.
#pragma once

#include <ipodkit/jump_index.h>

#include <functional>
#include <string>
#include <vector>

namespace ctl::browse
{
/// Lives on the thread of the default context.
class IndexBuilder
{
public:
    using Completion = std::function<void(const ipodkit::Result<ipodkit::JumpIndex>&)>;

    IndexBuilder() = default;

    /// Waits for what is being built; its completions run.
    ~IndexBuilder();
    IndexBuilder(const IndexBuilder&) = delete;
    IndexBuilder& operator=(const IndexBuilder&) = delete;

    /// Calls @p completion in the default context.
    void Build(std::vector<std::string> names, Completion completion);

private:
    struct Job;
    int m_running = 0;
};
}  // namespace ctl::browse
