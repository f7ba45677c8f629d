/// @file
/// A QML object whose properties are the rows of a struct.
#pragma once

#include <QQmlPropertyMap>

#include "value.h"

namespace ipodqml
{
/// Its properties are read-only for QML: assignments have no effect.
class RowMap : public QQmlPropertyMap
{
protected:
    template <class Derived>
    RowMap(Derived* derived, QObject* parent) : QQmlPropertyMap(derived, parent)
    {
    }

    /// Sets a property; bindings are evaluated only if it changes.
    void Set(const QString& name, const QVariant& to)
    {
        if (!contains(name) || value(name) != to) insert(name, to);
    }

    QVariant updateValue(const QString& key, const QVariant&) override { return value(key); }
};
}  // namespace ipodqml
