#include "call_model.h"

#include <ipodqml/session.h>

#include <algorithm>

#include "value.h"

namespace ipodqml
{
namespace
{
// The role of a row is its position among the rows of PhoneCall.
template <class Use>
void ForEachRole(const Use& use)
{
    int role = Qt::UserRole;
    ipodkit::ForEachRow<ipodkit::PhoneCall>([&](const auto& row) { use(role++, row); });
}
}  // namespace

CallModel::CallModel()
{
    Session& session = Session::Instance();
    Show(session.State()->calls);
    connect(&session, &Session::stateChanged, this,
            [this](const ipodkit::StatePtr& state, ipodkit::Fields changes)
            {
                if (changes.Has(ipodkit::Field::Calls)) Show(state->calls);
            });
}

int CallModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_calls.size());
}

QHash<int, QByteArray> CallModel::roleNames() const
{
    QHash<int, QByteArray> names;
    ForEachRole([&names](int role, const auto& row) { names[role] = PropertyName(row.name).toLatin1(); });
    return names;
}

QVariant CallModel::data(const QModelIndex& index, int role) const
{
    if (index.row() < 0 || index.row() >= rowCount()) return {};
    const ipodkit::PhoneCall& call = m_calls[static_cast<std::size_t>(index.row())].call;
    QVariant value;
    ForEachRole(
        [&](int each, const auto& row)
        {
            if (each == role) value = ToVariant(std::invoke(row.get, call));
        });
    return value;
}

QVariantMap CallModel::Current() const
{
    const auto ringing =
        std::find_if(m_calls.begin(), m_calls.end(),
                     [](const Call& each) { return each.call.status == ipodkit::CallStatus::Ringing; });
    if (ringing != m_calls.end()) return ToVariant(ringing->call).toMap();
    return m_calls.empty() ? Unknown<ipodkit::PhoneCall>().toMap() : ToVariant(m_calls.front().call).toMap();
}

// Merges the calls into the model: both are sorted by key.
void CallModel::Show(const std::map<std::string, ipodkit::PhoneCall>& calls)
{
    const auto rows = [this] { return static_cast<int>(m_calls.size()); };
    int row = 0;
    for (auto call = calls.begin(); call != calls.end() || row < rows();)
    {
        const auto place = m_calls.begin() + row;
        if (call == calls.end() || (row < rows() && place->key < call->first))
        {
            beginRemoveRows({}, row, row);
            m_calls.erase(place);
            endRemoveRows();
            continue;
        }
        if (row == rows() || call->first < place->key)
        {
            beginInsertRows({}, row, row);
            m_calls.insert(place, {call->first, call->second});
            endInsertRows();
        }
        else if (place->call != call->second)
        {
            place->call = call->second;
            Q_EMIT dataChanged(index(row), index(row));
        }
        ++call, ++row;
    }
    Q_EMIT changed();
}
}  // namespace ipodqml
