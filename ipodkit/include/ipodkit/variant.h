/// @file
/// Converts values to D-Bus variants and back, as their rows define. A value with rows is a dictionary a{sv} with the
/// keys of JSON. Enumerations become their names, durations int64 in the unit of their type, times int64 in seconds
/// since 1970-01-01 UTC, bytes "ay", and images a dictionary without the bytes. Absent members are omitted.
///
///     ToVariant(Battery{80, ChargingStatus::Charged});  // {'percent': <80>, 'status': <'charged'>}
#pragma once

#include <glib.h>
#include <ipodkit/fields.h>
#include <ipodkit/types.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ipodkit
{
/// Bus name of the companion daemon, which is also the name of its state interface; and the path of its state object,
/// whose properties are the fields of PlayerState, under the names that PropertyName() returns.
inline constexpr char kStateName[] = "com.zarn.linux.ipod.State";
inline constexpr char kStatePath[] = "/com/zarn/linux/ipod/State";

/// Returns the text with each invalid byte, NUL, and control character replaced by U+FFFD. A bus disconnects programs
/// that send invalid UTF-8.
inline std::string BusText(std::string_view text)
{
    std::string clean;
    while (!text.empty())
    {
        const gunichar code = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
        const bool encoded = code < static_cast<gunichar>(-2) && code != 0;
        const std::size_t bytes = encoded ? static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr)) : 1;
        clean += encoded && !g_unichar_iscntrl(code) ? text.substr(0, bytes) : "\xEF\xBF\xBD";
        text.remove_prefix(bytes);
    }
    return clean;
}

/// Returns the name of a row's D-Bus property: "TrackIndex" for "track_index".
inline std::string PropertyName(const char* row)
{
    std::string name;
    bool upper = true;
    for (; *row != '\0'; ++row)
    {
        if (*row != '_') name += upper ? g_ascii_toupper(*row) : *row;
        upper = *row == '_';
    }
    return name;
}

/// The conversions of one type. Type() is its D-Bus type string. To() returns a floating reference. From() requires a
/// variant of that type, and returns nothing if the value is not valid.
template <class T, class = void>
struct VariantOf;

/// Returns the value as a variant with a floating reference.
template <class T>
GVariant* ToVariant(const T& value)
{
    return VariantOf<T>::To(value);
}

/// Returns the value of a variant, which is only borrowed; nothing if it has another type or its value is not valid.
template <class T>
std::optional<T> FromVariant(GVariant* variant)
{
    if (!g_variant_is_of_type(variant, G_VARIANT_TYPE(VariantOf<T>::Type().c_str()))) return std::nullopt;
    return VariantOf<T>::From(variant);
}

namespace detail
{
template <class T, char code, auto make, auto get>
struct BasicVariant
{
    static std::string Type() { return {code}; }
    static GVariant* To(T value) { return make(value); }
    static std::optional<T> From(GVariant* variant) { return static_cast<T>(get(variant)); }
};

struct UnrefVariant
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using OwnedVariant = std::unique_ptr<GVariant, UnrefVariant>;

inline OwnedVariant Child(GVariant* container, gsize index)
{
    return OwnedVariant(g_variant_get_child_value(container, index));
}

template <class Get>
void AddEntry(GVariantBuilder& dictionary, const Row<Get>& row, GVariant* value)
{
    g_variant_builder_add(&dictionary, "{sv}", JsonName(row).c_str(), value);
}

template <class T, class Class>
void ReadEntry(GVariant* dictionary, const Row<T Class::*>& row, Class& value)
{
    const OwnedVariant entry(g_variant_lookup_value(dictionary, JsonName(row).c_str(), nullptr));
    if (entry == nullptr) return;
    if constexpr (kIsOptional<T>)
        value.*row.get = FromVariant<typename T::value_type>(entry.get());
    else if (auto read = FromVariant<T>(entry.get()))
        value.*row.get = std::move(*read);
}

// The other computed rows repeat what their structs hold in another form.
template <class T, class Class>
void ReadEntry(GVariant* dictionary, const Row<T (Class::*)() const>& row, Class& value)
{
    if constexpr (std::is_same_v<Class, PhoneCall>) ReadEntry(dictionary, Row{row.name, &PhoneCall::id, "", ""}, value);
}
}  // namespace detail

template <>
struct VariantOf<bool> : detail::BasicVariant<bool, 'b', g_variant_new_boolean, g_variant_get_boolean>
{
};
template <>
struct VariantOf<unsigned char> : detail::BasicVariant<unsigned char, 'y', g_variant_new_byte, g_variant_get_byte>
{
};
template <>
struct VariantOf<std::uint16_t> : detail::BasicVariant<std::uint16_t, 'q', g_variant_new_uint16, g_variant_get_uint16>
{
};
template <>
struct VariantOf<int> : detail::BasicVariant<int, 'i', g_variant_new_int32, g_variant_get_int32>
{
};
template <>
struct VariantOf<unsigned> : detail::BasicVariant<unsigned, 'u', g_variant_new_uint32, g_variant_get_uint32>
{
};
template <>
struct VariantOf<std::uint64_t> : detail::BasicVariant<std::uint64_t, 't', g_variant_new_uint64, g_variant_get_uint64>
{
};

template <>
struct VariantOf<std::string>
{
    static std::string Type() { return "s"; }
    static GVariant* To(const std::string& text) { return g_variant_new_string(BusText(text).c_str()); }
    static std::optional<std::string> From(GVariant* variant) { return g_variant_get_string(variant, nullptr); }
};

template <>
struct VariantOf<const char*> : VariantOf<std::string>
{
};

template <>
struct VariantOf<std::vector<unsigned char>>
{
    using Bytes = std::vector<unsigned char>;

    static std::string Type() { return "ay"; }
    static GVariant* To(const Bytes& bytes)
    {
        return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
    }
    static std::optional<Bytes> From(GVariant* variant)
    {
        gsize count = 0;
        const auto* const first = static_cast<const unsigned char*>(g_variant_get_fixed_array(variant, &count, 1));
        return Bytes(first, first + count);
    }
};

template <class Ratio>
struct VariantOf<std::chrono::duration<std::int64_t, Ratio>>
{
    using Duration = std::chrono::duration<std::int64_t, Ratio>;

    static std::string Type() { return "x"; }
    static GVariant* To(Duration time) { return g_variant_new_int64(time.count()); }
    static std::optional<Duration> From(GVariant* variant) { return Duration(g_variant_get_int64(variant)); }
};

template <>
struct VariantOf<PhoneCall::Time>
{
    using Since = VariantOf<PhoneCall::Time::duration>;

    static std::string Type() { return Since::Type(); }
    static GVariant* To(PhoneCall::Time time) { return Since::To(time.time_since_epoch()); }
    static std::optional<PhoneCall::Time> From(GVariant* variant) { return PhoneCall::Time(*Since::From(variant)); }
};

template <class E>
struct VariantOf<E, std::enable_if_t<kHasNames<E>>>
{
    static std::string Type() { return "s"; }
    static GVariant* To(E value) { return g_variant_new_string(ToString(value).c_str()); }
    static std::optional<E> From(GVariant* variant)
    {
        constexpr std::string_view kUnknown = "unknown:";
        const std::string name = g_variant_get_string(variant, nullptr);
        if (name.compare(0, kUnknown.size(), kUnknown) != 0) return FromName<E>(name);
        return static_cast<E>(std::atoi(name.c_str() + kUnknown.size()));
    }
};

template <class K, class V>
struct VariantOf<std::map<K, V>>
{
    using Map = std::map<K, V>;

    static std::string Type() { return "a{" + VariantOf<K>::Type() + VariantOf<V>::Type() + "}"; }
    static GVariant* To(const Map& map)
    {
        GVariantBuilder entries;
        g_variant_builder_init(&entries, G_VARIANT_TYPE(Type().c_str()));
        for (const auto& [key, value] : map)
            g_variant_builder_add_value(&entries, g_variant_new_dict_entry(ToVariant(key), ToVariant(value)));
        return g_variant_builder_end(&entries);
    }
    static std::optional<Map> From(GVariant* variant)
    {
        Map map;
        for (gsize i = 0; i < g_variant_n_children(variant); ++i)
        {
            const detail::OwnedVariant entry = detail::Child(variant, i);
            const auto key = FromVariant<K>(detail::Child(entry.get(), 0).get());
            const auto value = FromVariant<V>(detail::Child(entry.get(), 1).get());
            if (key && value) map.emplace(*key, *value);
        }
        return map;
    }
};

template <class T>
struct VariantOf<T, std::enable_if_t<kHasRows<T>>>
{
    static std::string Type() { return "a{sv}"; }
    static GVariant* To(const T& value)
    {
        GVariantBuilder dictionary;
        g_variant_builder_init(&dictionary, G_VARIANT_TYPE_VARDICT);
        const auto add = [&](const auto& row)
        {
            const auto& field = std::invoke(row.get, value);
            if constexpr (!kIsOptional<std::decay_t<decltype(field)>>)
                detail::AddEntry(dictionary, row, ToVariant(field));
            else if (field)
                detail::AddEntry(dictionary, row, ToVariant(*field));
        };
        ForEachRow<T>(add);
        return g_variant_builder_end(&dictionary);
    }
    static std::optional<T> From(GVariant* variant)
    {
        T value;
        ForEachRow<T>([&](const auto& row) { detail::ReadEntry(variant, row, value); });
        return value;
    }
};

/// Null is an empty dictionary. From() always returns nothing: the rows of an image omit its bytes.
template <class T>
struct VariantOf<std::shared_ptr<const T>>
{
    static std::string Type() { return VariantOf<T>::Type(); }
    static GVariant* To(const std::shared_ptr<const T>& shared)
    {
        return shared != nullptr ? ToVariant(*shared) : g_variant_new("a{sv}", nullptr);
    }
    static std::optional<std::shared_ptr<const T>> From(GVariant*) { return std::nullopt; }
};
}  // namespace ipodkit
