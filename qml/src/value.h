/// @file
/// Converts values of ipodkit to QML. Texts are strings, durations milliseconds, enumerations their names ("playing"),
/// structs objects, maps objects by key, artwork an address of the image provider.
///
/// An unknown value keeps its type, so that bindings need no checks: an empty text, false, -1, or an object of those.
#pragma once

#include <ipodkit/fields.h>
#include <ipodkit/known.h>
#include <ipodkit/picture.h>
#include <ipodkit/types.h>

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace ipodqml
{
inline QString Text(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// "trackIndex" for "track_index".
QString PropertyName(const char* rowName);

/// Returns the URL of an image for QML; empty for null.
QString ArtworkAddress(const ipodkit::PicturePtr& picture);

template <class T>
inline constexpr bool kMayBeUnknown = ipodkit::kIsKnown<T> || ipodkit::kIsOptional<T>;

template <class T>
QVariant ToVariant(const T& value);

/// Returns the placeholder for an unknown value of the type.
template <class T>
QVariant Unknown()
{
    if constexpr (ipodkit::kHasRows<T>)
    {
        QVariantMap fields;
        ipodkit::ForEachRow<T>(
            [&fields](const auto& row)
            { fields[PropertyName(row.name)] = Unknown<ipodkit::FieldType<T, std::decay_t<decltype(row)>>>(); });
        return fields;
    }
    else if constexpr (kMayBeUnknown<T>)
        return Unknown<std::decay_t<decltype(*std::declval<T>())>>();
    else if constexpr (std::is_same_v<T, bool>)
        return false;
    else if constexpr (std::is_arithmetic_v<T>)
        return -1;
    else if constexpr (std::is_enum_v<T>)
        return QString();
    else if constexpr (std::is_same_v<T, std::chrono::milliseconds> || std::is_same_v<T, ipodkit::PhoneCall::Time>)
        return -1.0;
    else
        return ToVariant(T());
}

template <class T>
QVariant OfRows(const T& value)
{
    QVariantMap fields;
    ipodkit::ForEachRow<T>([&](const auto& row)
                           { fields[PropertyName(row.name)] = ToVariant(std::invoke(row.get, value)); });
    return fields;
}

inline QVariant Of(const std::string& text)
{
    return Text(text);
}
inline QVariant Of(std::chrono::milliseconds time)
{
    return static_cast<double>(time.count());
}
inline QVariant Of(ipodkit::PhoneCall::Time time)
{
    return static_cast<double>(time.time_since_epoch().count());
}
inline QVariant Of(const std::vector<unsigned char>& bytes)
{
    const QByteArray data(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    return QString::fromLatin1(data.toHex());
}
inline QVariant Of(const ipodkit::PicturePtr& picture)
{
    return ArtworkAddress(picture);
}
template <class Key, class T>
QVariant Of(const std::map<Key, T>& values)
{
    QVariantMap map;
    for (const auto& [key, value] : values) map[ToVariant(key).toString()] = ToVariant(value);
    return map;
}

template <class T>
QVariant ToVariant(const T& value)
{
    if constexpr (kMayBeUnknown<T>)
        return value ? ToVariant(*value) : Unknown<T>();
    else if constexpr (ipodkit::kHasRows<T>)
        return OfRows(value);
    else if constexpr (ipodkit::kHasNames<T>)
        return Text(ipodkit::ToString(value));
    else if constexpr (std::is_same_v<T, bool>)
        return value;
    else if constexpr (std::is_arithmetic_v<T>)
        return static_cast<double>(value);
    else
        return Of(value);
}
}  // namespace ipodqml
