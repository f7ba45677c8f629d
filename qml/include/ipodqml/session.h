/// @file
/// The connection of the QML module `Ipod` to the service.
///
/// The module opens the process's ipodkit::Session when QML first uses one of its types. It lives in GLib's default
/// main context, so Qt must run with GLib's event dispatcher; without, `error` reports it and nothing else works.
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
/// Returns whether Qt's loop on this thread iterates GLib's main context. Requires an application object.
bool RunsInGLibLoop();

/// The QML singleton `Session`. One exists per process; it belongs to the application object.
class Session : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// "absent", "connecting", "ready", or "lost".
    Q_PROPERTY(QString phase READ PhaseName NOTIFY connectionChanged)
    /// How often the service has appeared.
    Q_PROPERTY(int generation READ Generation NOTIFY connectionChanged)
    /// Why the session is not ready: kind, reason, and remedy; empty texts if there is no error.
    Q_PROPERTY(QVariantMap error READ ErrorMap NOTIFY connectionChanged)

public:
    ~Session() override;
    static Session* create(QQmlEngine* engine, QJSEngine*);

    /// Returns the singleton, and creates it at the first call. GUI thread only.
    static Session& Instance();

    /// Makes the module use @p session, which must outlive all QML engines, in place of one of its own. Call it before
    /// the first use of the module, for example with that of an ipodkit::FakeSession.
    static void Use(ipodkit::Session& session);

    /// Returns the session of the kit; null when none could be opened.
    ipodkit::Session* Kit() const { return m_kit; }
    const ipodkit::StatePtr& State() const { return m_state; }

    /// Reads the state from the service again.
    Q_INVOKABLE void refresh();

    /// Requests the audio source and reports failure.
    bool AcquireAudio();

    /// Requests the audio source, and starts or resumes playback.
    void Play();

    /// Sends a request without result. If it fails, failed() reports it under the name @p what.
    void Send(const QString& what, ipodkit::Request<void> request);
    void Report(const QString& what, const ipodkit::Error& error);

    QString PhaseName() const;
    int Generation() const { return static_cast<int>(m_state->generation); }
    QVariantMap ErrorMap() const;

Q_SIGNALS:
    void connectionChanged();
    void stateChanged(const ipodkit::StatePtr& state, ipodkit::Fields changed);

    /// A request failed. Requests that fail because there is no service are not reported: `phase` does that.
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
