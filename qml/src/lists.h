/// @file
/// The playing list and the list of devices for QML.
#pragma once

#include <QtQml/qqmlregistration.h>

#include "paged_model.h"

namespace ipodqml
{
/// The playing list. Player.trackIndex is the playing row.
class QueueModel : public PagedModel
{
    Q_OBJECT
    QML_ELEMENT

public:
    QueueModel();

    /// Requests the audio source, and plays the entry.
    Q_INVOKABLE void play(int row);
};

/// The attached devices.
class DeviceModel : public PagedModel
{
    Q_OBJECT
    QML_ELEMENT

    /// The row that was entered last; -1 before the first enter(), and since a device was attached or removed.
    Q_PROPERTY(int entered READ Entered NOTIFY enteredChanged)

public:
    DeviceModel();

    /// Selects the device that is browsed and played.
    Q_INVOKABLE void enter(int row);
    int Entered() const { return m_entered; }

Q_SIGNALS:
    void enteredChanged();

private:
    void SetEntered(int row);

    int m_entered = -1;
};
}  // namespace ipodqml
