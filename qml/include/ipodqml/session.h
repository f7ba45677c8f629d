/// @file
/// The connection of the QML module `Ipod` to the service.
///
/// The module opens the process's ipodkit::Session when QML first uses one of its types. The session runs in GLib's
/// default main context, so Qt must use GLib's event dispatcher. Otherwise `error` has the reason, and all lists and
/// properties stay empty.
#pragma once

#include <ipodkit/audio_source.h>
#include <ipodkit/session.h>

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <optional>

class QJSEngine;
class QQmlEngine;

#pragma GCC visibility push(default)

namespace ipodqml
{
/// Returns whether Qt's event loop on this thread iterates GLib's main context. Requires an application object.
bool RunsInGLibLoop();

/// The QML singleton `Session`. One exists per process; it belongs to the application object.
class Session : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// "absent", "connecting", "ready", or "lost".
    Q_PROPERTY(QString phase READ PhaseName NOTIFY connectionChanged)
    /// Number of times the service has appeared.
    Q_PROPERTY(int generation READ Generation NOTIFY connectionChanged)
    /// Why the session is not ready: kind, reason, and remedy; empty texts without an error.
    Q_PROPERTY(QVariantMap error READ ErrorMap NOTIFY connectionChanged)

public:
    ~Session() override;
    static Session* create(QQmlEngine* engine, QJSEngine*);

    /// Returns the singleton, and creates it at the first call. GUI thread only.
    static Session& Instance();

    /// Makes the module use @p session, which must outlive all QML engines, instead of opening one. Call it
    /// before the first use of the module, for example with the session of an ipodkit::FakeSession.
    static void Use(ipodkit::Session& session);

    /// Returns the ipodkit session, which this object owns unless Use() was called; null if none could be opened.
    ipodkit::Session* Kit() const { return m_kit; }

    /// Returns the state published last; never null.
    const ipodkit::StatePtr& State() const { return m_state; }

    /// Reads the state from the service again.
    Q_INVOKABLE void refresh();

    /// Requests the audio source. Returns whether the request was accepted; otherwise failed() reports the reason.
    bool AcquireAudio();

    /// Requests the audio source, and starts or resumes playback.
    void Play();

    /// Sends a request without result. If it fails, failed() reports it under the name @p what.
    void Send(const QString& what, ipodkit::Request<void> request);

    /// Emits failed(), unless the service is absent.
    void Report(const QString& what, const ipodkit::Error& error);

    QString PhaseName() const;
    int Generation() const { return static_cast<int>(m_state->generation); }
    QVariantMap ErrorMap() const;

Q_SIGNALS:
    void connectionChanged();
    void stateChanged(const ipodkit::StatePtr& state, ipodkit::Fields changed);

    /// A request failed. Failures due to an absent service are not reported; see `phase`.
    void failed(const QString& request, const QString& reason, const QString& remedy);

private:
    Session();
    void Open();
    void Follow();

    std::unique_ptr<ipodkit::Session> m_own;
    ipodkit::Session* m_kit = nullptr;
    std::unique_ptr<ipodkit::AudioSource> m_audio;
    std::optional<ipodkit::Error> m_openError;
    ipodkit::StatePtr m_state = std::make_shared<ipodkit::PlayerState>();
    ipodkit::Subscription m_following;
};
}  // namespace ipodqml

#pragma GCC visibility pop
