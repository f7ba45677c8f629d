#include "player.h"

#include <ipodqml/session.h>

#include <QQmlEngine>
#include <algorithm>
#include <cmath>

#include "artwork_provider.h"

namespace ipodqml
{
namespace
{
using namespace std::chrono_literals;
constexpr auto kTick = 250ms;

// Calls @p use with the commands of the session, if there is one.
template <class Use>
void Send(const char* what, const Use& use)
{
    Session& session = Session::Instance();
    if (session.Kit() != nullptr) session.Send(QString::fromLatin1(what), use(session.Kit()->Commands()));
}
}  // namespace

Player::Player(QQmlEngine* engine) : RowMap(this, nullptr)
{
    AddArtworkProvider(*engine);
    Session& session = Session::Instance();
    Show(*session.State(), ipodkit::Fields::All());
    connect(&session, &Session::stateChanged, this,
            [this](const ipodkit::StatePtr& state, ipodkit::Fields changed) { Show(*state, changed); });
    connect(&m_tick, &QTimer::timeout, this, &Player::elapsedChanged);
}

void Player::Show(const ipodkit::PlayerState& state, ipodkit::Fields changed)
{
    QVariantMap why;
    ipodkit::ForEachRow<ipodkit::PlayerState>(
        [&](const auto& row)
        {
            const QString name = PropertyName(row.name);
            if (changed.Has(row.field)) Set(name, ToVariant(std::invoke(row.get, state)));
            if (const auto reason = state.Why(row.field)) why[name] = ToVariant(*reason);
        });
    if (m_why != why)
    {
        m_why = why;
        Q_EMIT whyChanged();
    }
    if (!changed.Has(ipodkit::Field::Position)) return;
    if (state.position && state.position->advancing)
        m_tick.start(kTick);
    else
        m_tick.stop();
    Q_EMIT elapsedChanged();
}

double Player::Elapsed() const
{
    const ipodkit::StatePtr& state = Session::Instance().State();
    return state->position ? static_cast<double>(std::max(0ms, state->position->Now()).count()) : 0;
}

void Player::play()
{
    Session::Instance().Play();
}

void Player::pause()
{
    Send("pause", [](const ipodkit::Commands& commands) { return commands.Pause(); });
}

void Player::toggle()
{
    if (Session::Instance().State()->status == ipodkit::PlayStatus::Playing)
        pause();
    else
        play();
}

void Player::next()
{
    Send("next", [](const ipodkit::Commands& commands) { return commands.Next(); });
}

void Player::previous()
{
    Send("previous", [](const ipodkit::Commands& commands) { return commands.Previous(); });
}

void Player::seek(double milliseconds)
{
    if (!std::isfinite(milliseconds)) return;
    constexpr double kMost = 2147483647;
    const std::chrono::seconds to(static_cast<int>(std::clamp(std::floor(milliseconds / 1000), 0.0, kMost)));
    Send("seek", [to](const ipodkit::Commands& commands) { return commands.Seek(to); });
}

void Player::setShuffle(const QString& mode)
{
    if (const auto value = ipodkit::FromName<ipodkit::Shuffle>(mode.toStdString()))
        Send("shuffle", [value](const ipodkit::Commands& commands) { return commands.SetShuffle(*value); });
}

void Player::setRepeat(const QString& mode)
{
    if (const auto value = ipodkit::FromName<ipodkit::Repeat>(mode.toStdString()))
        Send("repeat", [value](const ipodkit::Commands& commands) { return commands.SetRepeat(*value); });
}

BatteryInfo::BatteryInfo(QQmlEngine*) : RowMap(this, nullptr)
{
    Session& session = Session::Instance();
    Show(*session.State());
    connect(&session, &Session::stateChanged, this,
            [this](const ipodkit::StatePtr& state, ipodkit::Fields changed)
            {
                if (changed.Has(ipodkit::Field::Battery)) Show(*state);
            });
}

void BatteryInfo::Show(const ipodkit::PlayerState& state)
{
    const QVariantMap fields = ToVariant(state.battery).toMap();
    for (auto field = fields.begin(); field != fields.end(); ++field) Set(field.key(), field.value());
}
}  // namespace ipodqml
