/// @file
/// The QML singletons `Player` and `BatteryInfo`.
#pragma once

#include <ipodkit/player_state.h>

#include <QtQml/qqmlregistration.h>
#include <QTimer>

#include "row_map.h"

class QJSEngine;
class QQmlEngine;

namespace ipodqml
{
/// The state of the player, with a property for each row of ipodkit::PlayerState, and the playback commands.
class Player : public RowMap
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// Position in the track in milliseconds; it advances during playback, and is 0 while unknown.
    Q_PROPERTY(double elapsed READ Elapsed NOTIFY elapsedChanged)
    /// Reasons why properties are unknown, by property name; known properties have no entry.
    Q_PROPERTY(QVariantMap why READ Why NOTIFY whyChanged)

public:
    static Player* create(QQmlEngine* engine, QJSEngine*) { return new Player(engine); }
    explicit Player(QQmlEngine* engine);

    Q_INVOKABLE void play();
    Q_INVOKABLE void pause();
    Q_INVOKABLE void toggle();
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();
    Q_INVOKABLE void seek(double milliseconds);  ///< rounded down to a second
    Q_INVOKABLE void setShuffle(const QString& mode);
    Q_INVOKABLE void setRepeat(const QString& mode);

    double Elapsed() const;
    QVariantMap Why() const { return m_why; }

Q_SIGNALS:
    void elapsedChanged();
    void whyChanged();

private:
    void Show(const ipodkit::PlayerState& state, ipodkit::Fields changed);

    QVariantMap m_why;
    QTimer m_tick;
};

/// The battery of the device, with a property for each row of ipodkit::Battery.
class BatteryInfo : public RowMap
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    static BatteryInfo* create(QQmlEngine* engine, QJSEngine*) { return new BatteryInfo(engine); }
    explicit BatteryInfo(QQmlEngine* engine);

private:
    void Show(const ipodkit::PlayerState& state);
};
}  // namespace ipodqml
