/// @file
/// Completions whose answers are known, until they are told.
#pragma once

#include <ipodkit/error.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

#include "loop/guard.h"

namespace ipodkit
{
/// Context thread only. Completions are told in the order in which they came, each once. They may end the owner: who
/// tells them keeps it alive.
class Answers
{
public:
    explicit Answers(const Guard& guard) : m_guard(guard) {}

    template <class T>
    void Add(std::function<void(Result<T>)> completion, Result<T> result)
    {
        m_answers.push_back(
            {[completion = std::move(completion), result = std::move(result)](const std::optional<Error>& instead)
             { completion(instead ? Result<T>(tl::unexpected<Error>(*instead)) : result); },
             std::nullopt});
    }

    /// Those that are there will be told @p error instead.
    void Replace(const Error& error)
    {
        for (Answer& answer : m_answers) answer.instead = error;
    }

    /// Does nothing when there is none.
    void TellFirst()
    {
        if (m_answers.empty()) return;
        const Answer first = std::move(m_answers.front());
        m_answers.pop_front();
        m_guard.Run("pager", [&first] { first.tell(first.instead); });
    }

    /// As many as there are now: completions that ask again do not keep it busy for ever.
    void TellAll()
    {
        for (std::size_t left = m_answers.size(); left > 0; --left) TellFirst();
    }

private:
    struct Answer
    {
        std::function<void(const std::optional<Error>& instead)> tell;
        std::optional<Error> instead;
    };

    const Guard m_guard;
    std::deque<Answer> m_answers;
};
}  // namespace ipodkit
