/// @file
/// The phone calls of the device for QML: a role per row of ipodkit::PhoneCall.
#pragma once

#include <ipodkit/player_state.h>

#include <QtQml/qqmlregistration.h>
#include <QAbstractListModel>
#include <string>
#include <vector>

namespace ipodqml
{
class CallModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT

    /// Number of calls.
    Q_PROPERTY(int count READ rowCount NOTIFY changed)
    /// The most important call, as an object with the roles as members: a ringing one, or else the first. Without calls
    /// its texts are empty.
    Q_PROPERTY(QVariantMap current READ Current NOTIFY changed)

public:
    CallModel();
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    QVariantMap Current() const;

Q_SIGNALS:
    void changed();

private:
    struct Call
    {
        std::string key;
        ipodkit::PhoneCall call;
    };

    void Show(const std::map<std::string, ipodkit::PhoneCall>& calls);

    std::vector<Call> m_calls;
};
}  // namespace ipodqml
