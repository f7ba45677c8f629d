/// @file
/// Finds the slot of a virtual operation and calls it through the table, as an application built against older headers
/// does. Follows the Itanium C++ ABI and its ARM variant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <tuple>
#include <utility>

namespace slots
{
/// The two words of a pointer to a member function.
struct MemberPointer
{
    std::uintptr_t word;
    std::ptrdiff_t adjustment;
};

template <class Operation>
MemberPointer Words(Operation operation)
{
    static_assert(sizeof(Operation) == sizeof(MemberPointer), "a pointer to a member function has two words");
    MemberPointer words{};
    std::memcpy(&words, &operation, sizeof(words));
    return words;
}

/// Slot of a virtual operation, from 0; empty for a non-virtual operation.
///
/// The first word holds the slot's distance in bytes. Its lowest bit marks it as virtual, but ARM needs that bit for
/// Thumb code and marks the adjustment instead.
template <class Operation>
std::optional<std::size_t> SlotOf(Operation operation)
{
    const MemberPointer words = Words(operation);
#if defined(__arm__) || defined(__aarch64__)
    if ((words.adjustment & 1) == 0) return std::nullopt;
    return words.word / sizeof(void*);
#else
    if ((words.word & 1) == 0) return std::nullopt;
    return (words.word - 1) / sizeof(void*);
#endif
}

/// Calls the entry at @p slot of the object's table as an operation of the given type, with default values as
/// arguments. @p object is the subobject with that table.
template <class Class, class Result, class... Params>
void CallSlot(Class* object, std::size_t slot, Result (Class::*)(Params...))
{
    using Function = Result (*)(Class*, Params...);
    const Function* const table = *reinterpret_cast<const Function* const*>(object);
    std::tuple<std::decay_t<Params>...> values{};
    std::apply([&](auto&... value) { static_cast<void>(table[slot](object, static_cast<Params>(value)...)); }, values);
}

/// One operation of an interface: its name, its slot, and a function that calls a given slot.
template <class Interface>
struct Row
{
    const char* name;
    std::optional<std::size_t> slot;
    std::function<void(Interface*, std::size_t)> callAt;
};

template <class Interface, class Result, class... Params>
Row<Interface> MakeRow(const char* name, Result (Interface::*operation)(Params...))
{
    return {name, SlotOf(operation),
            [operation](Interface* object, std::size_t slot) { CallSlot(object, slot, operation); }};
}
}  // namespace slots
