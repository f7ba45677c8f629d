/// @file
/// Values that may be unknown, with the reason.
#pragma once

#include <ipodkit/error.h>
#include <ipodkit/fields.h>

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// Why a value is unknown.
enum class Unknown : int
{
    NotReported,   ///< no event has reported it yet
    Refused,       ///< the service answered the request with an error or an invalid value
    TimedOut,      ///< the service did not answer within the deadline; the answer is still awaited
    NoDevice,      ///< no device is attached
    NotSupported,  ///< the service does not support the request
};
template <>
struct EnumNames<Unknown>
{
    static constexpr const char* type = "Unknown";
    static constexpr const char* names[] = {"not reported yet", "refused", "timed out", "no device", "not supported"};
};

/// A value, or the reason why it is unknown. Used like std::optional: for an unknown value, value() throws
/// std::bad_optional_access, and `*` and `->` are undefined.
///
///     if (state->track) Show(state->track->title);
///     else Explain(state->track.Why());
///
/// A condition checks whether the value is known, also for Known<bool>: compare with true, or use value_or(false).
template <class T>
class Known
{
public:
    Known() = default;
    Known(T value) : m_value(std::move(value)) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U, T> && !std::is_same_v<std::decay_t<U>, T> &&
                                                !std::is_same_v<std::decay_t<U>, Unknown>>>
    Known(const U& value) : m_value(T(value))
    {
    }
    Known(Unknown why, std::shared_ptr<const Error> cause = nullptr) : m_why(why), m_cause(std::move(cause)) {}

    bool has_value() const { return m_value.has_value(); }
    explicit operator bool() const { return has_value(); }
    const T& operator*() const& { return *m_value; }
    const T* operator->() const { return &*m_value; }
    const T& value() const { return m_value.value(); }
    T value_or(T otherwise) const { return m_value.value_or(std::move(otherwise)); }

    /// Returns why the value is unknown. Unspecified when it is known; PlayerState::Why() returns nothing then.
    Unknown Why() const { return m_why; }

    /// Returns the error that the service answered with; null when the value is known, or no such answer arrived.
    const Error* Cause() const { return m_cause.get(); }

    /// Compares values and reasons, not causes. An unknown value differs from every plain one.
    bool operator==(const Known& other) const
    {
        return m_value == other.m_value && (m_value.has_value() || m_why == other.m_why);
    }
    bool operator!=(const Known& other) const { return !(*this == other); }
    template <class U, class = decltype(std::declval<const T&>() == std::declval<const U&>())>
    bool operator==(const U& value) const
    {
        return m_value == value;
    }
    template <class U, class = decltype(std::declval<const T&>() == std::declval<const U&>())>
    bool operator!=(const U& value) const
    {
        return !(*this == value);
    }

private:
    std::optional<T> m_value;
    Unknown m_why = Unknown::NotReported;
    std::shared_ptr<const Error> m_cause;
};

template <class T>
inline constexpr bool kIsKnown = false;
template <class T>
inline constexpr bool kIsKnown<Known<T>> = true;
}  // namespace ipodkit

#pragma GCC visibility pop
