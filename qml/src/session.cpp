#include <ipodqml/session.h>

#include <gio/gio.h>
#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QPointer>
#include <QQmlEngine>

#include "artwork_provider.h"
#include "value.h"

namespace ipodqml
{
namespace
{
constexpr char kNoGLib[] = "Qt runs without GLib's event dispatcher, which the module Ipod requires";
constexpr char kNoGLibRemedy[] = "unset QT_NO_GLIB, and use a Qt that was built with GLib";

ipodkit::Session*& Given()
{
    static ipodkit::Session* given = nullptr;
    return given;
}

// By default, GLib terminates the process when the bus disappears. The kit reports it and waits for another bus.
void SurviveTheBus()
{
    const auto keep = [](GObject*, GAsyncResult* result, gpointer)
    {
        GDBusConnection* const bus = g_bus_get_finish(result, nullptr);
        if (bus == nullptr) return;
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        g_object_unref(bus);
    };
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, keep, nullptr);
}

bool MeansNoService(const ipodkit::Error& error)
{
    using ipodkit::ErrorKind;
    return error.kind == ErrorKind::NoBus || error.kind == ErrorKind::NoService ||
           error.kind == ErrorKind::ServiceLost || error.kind == ErrorKind::Cancelled;
}
}  // namespace

bool RunsInGLibLoop()
{
    const QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    return dispatcher != nullptr && dispatcher->inherits("QEventDispatcherGlib");
}

Session::Session() : QObject(QCoreApplication::instance())
{
    Open();
    if (m_kit == nullptr)
    {
        qWarning("Ipod: %s", m_openError->reason.c_str());
        return;
    }
    m_audio = std::make_unique<ipodkit::AudioSource>(*m_kit, 0);
    Follow();
}

Session::~Session() = default;

Session& Session::Instance()
{
    static QPointer<Session> instance;
    if (instance.isNull()) instance = new Session;
    return *instance;
}

Session* Session::create(QQmlEngine* engine, QJSEngine*)
{
    AddArtworkProvider(*engine);
    QQmlEngine::setObjectOwnership(&Instance(), QQmlEngine::CppOwnership);
    return &Instance();
}

void Session::Use(ipodkit::Session& session)
{
    Given() = &session;
}

void Session::Open()
{
    m_kit = Given();
    if (m_kit != nullptr) return;
    if (!RunsInGLibLoop())
    {
        m_openError = ipodkit::Error{ipodkit::ErrorKind::BadArgument, kNoGLib};
        return;
    }
    ipodkit::Result<std::unique_ptr<ipodkit::Session>> opened = ipodkit::Session::Open();
    if (!opened)
    {
        m_openError = opened.error();
        return;
    }
    m_own = std::move(*opened);
    m_kit = m_own.get();
}

void Session::Follow()
{
    const auto follow = [this](const ipodkit::StatePtr& state, ipodkit::Fields changed)
    {
        m_state = state;
        if (changed.Has(ipodkit::Field::Artwork)) KeepForProviders(state->Artwork());
        if (changed.Has(ipodkit::Field::Connection) && m_own != nullptr) SurviveTheBus();
        Q_EMIT stateChanged(state, changed);
        if (changed.Has(ipodkit::Field::Connection)) Q_EMIT connectionChanged();
    };
    m_following = m_kit->OnState("QML", follow);
}

void Session::refresh()
{
    if (m_kit != nullptr) m_kit->Refresh();
}

// On a head unit, an application must own the audio source before it starts playback.
bool Session::AcquireAudio()
{
    if (m_kit == nullptr) return false;
    const ipodkit::Result<void> granted = m_audio->Request();
    if (!granted) Report(QStringLiteral("play"), granted.error());
    if (m_audio->State() == ipodkit::AudioState::Granted) m_audio->Activated(0);
    return granted.has_value();
}

void Session::Play()
{
    if (AcquireAudio()) Send(QStringLiteral("play"), m_audio->Play());
}

void Session::Send(const QString& what, ipodkit::Request<void> request)
{
    std::move(request).Start(
        [self = QPointer<Session>(this), what](const ipodkit::Result<void>& done)
        {
            if (!done && self != nullptr) self->Report(what, done.error());
        });
}

void Session::Report(const QString& what, const ipodkit::Error& error)
{
    if (MeansNoService(error)) return;
    Q_EMIT failed(what, Text(error.reason), QString::fromUtf8(ipodkit::Remedy(error.kind)));
}

QString Session::PhaseName() const
{
    return QString::fromLatin1(ipodkit::Name(m_state->phase)).toLower();
}

QVariantMap Session::ErrorMap() const
{
    const std::optional<ipodkit::Error>& error = m_kit == nullptr ? m_openError : m_state->error;
    if (!error) return {{"kind", ""}, {"reason", ""}, {"remedy", ""}};
    const char* const remedy = m_kit == nullptr && !RunsInGLibLoop() ? kNoGLibRemedy : ipodkit::Remedy(error->kind);
    return {{"kind", ipodkit::Name(error->kind)}, {"reason", Text(error->reason)}, {"remedy", remedy}};
}
}  // namespace ipodqml
