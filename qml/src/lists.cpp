#include "lists.h"

#include <ipodqml/session.h>

namespace ipodqml
{
QueueModel::QueueModel() : PagedModel(ipodkit::ListKind::Playing)
{
    connect(&Session::Instance(), &Session::stateChanged, this,
            [this](const ipodkit::StatePtr&, ipodkit::Fields changed)
            {
                if (changed.Has(ipodkit::Field::QueueSize)) Recount();
            });
}

void QueueModel::play(int row)
{
    Session& session = Session::Instance();
    if (row < 0 || row >= Entries() || !session.AcquireAudio()) return;
    session.Send(QStringLiteral("play"), session.Kit()->Commands().PlayPlayingEntry(row));
}

DeviceModel::DeviceModel() : PagedModel(ipodkit::ListKind::Devices)
{
    connect(&Session::Instance(), &Session::stateChanged, this,
            [this](const ipodkit::StatePtr&, ipodkit::Fields changed)
            {
                if (!changed.Has(ipodkit::Field::DeviceCount)) return;
                SetEntered(-1);  // the rows are those of other devices
                Recount();
            });
}

void DeviceModel::SetEntered(int row)
{
    m_entered = row;
    Q_EMIT enteredChanged();
}

void DeviceModel::enter(int row)
{
    Session& session = Session::Instance();
    if (row < 0 || row >= Entries()) return;
    session.Send(QStringLiteral("device"), session.Kit()->Commands().EnterDevice(row));
    SetEntered(row);
}
}  // namespace ipodqml
