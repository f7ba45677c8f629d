/// @file
/// Isolates the kit from the application's callbacks, which are called from C and share one thread.
#pragma once

#include <chrono>
#include <exception>
#include <string>

namespace ipodkit
{
/// Runs callbacks. Logs exceptions that they throw, and the names of those that exceed the budget, through
/// `liblog_category` at level WARN; through GLib's log while that is not set up.
class Guard
{
public:
    explicit Guard(std::chrono::microseconds budget) : m_budget(budget) {}

    template <class Callback>
    void Run(const std::string& name, Callback&& callback) const
    {
        const auto start = std::chrono::steady_clock::now();
        try
        {
            callback();
        }
        catch (const std::exception& thrown)
        {
            LogThrow(name, thrown.what());
        }
        catch (...)
        {
            LogThrow(name, "not a std::exception");
        }
        Judge(name, std::chrono::steady_clock::now() - start);
    }

private:
    void Judge(const std::string& name, std::chrono::steady_clock::duration taken) const;
    static void LogThrow(const std::string& name, const char* what);

    std::chrono::microseconds m_budget;
};

/// Writes one line of level WARN.
void LogWarning(const std::string& text);

/// Writes one line of level DEBUG; none while logging is not set up.
void LogDebug(const std::string& text);

/// Returns the duration as text: "1.2 ms".
std::string DurationText(std::chrono::steady_clock::duration duration);
}  // namespace ipodkit
