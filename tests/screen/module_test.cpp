// Starts the QML tests of the module with a fake session.
#include <ipodkit/testing.h>
#include <ipodqml/session.h>

#include <QtQuickTest/quicktest.h>
#include <QQmlContext>
#include <QQmlEngine>

namespace
{
using namespace std::chrono_literals;

// The fake session for QML.
class Fake : public QObject
{
    Q_OBJECT

public:
    Fake() { ipodqml::Session::Use(m_fake.Get()); }

    Q_INVOKABLE void clear() { m_fake.SetState(ipodkit::FakeSession::ReadyState()); }
    Q_INVOKABLE void play(const QString& title)
    {
        ipodkit::PlayerState state = ipodkit::FakeSession::ReadyState();
        state.track = ipodkit::Track{title.toStdString(), "Harbour Quartet"};
        state.position = ipodkit::Position{42s, 180s, std::chrono::steady_clock::now(), false};
        state.status = ipodkit::PlayStatus::Playing;
        state.queueSize = 3;
        m_fake.SetState(state);
    }
    Q_INVOKABLE void ring(const QString& name)
    {
        ipodkit::PhoneCall call;
        call.id = "1";
        call.name = name.toStdString();
        call.status = ipodkit::CallStatus::Ringing;
        m_fake.Emit(ipodkit::CallChanged{call});
    }
    Q_INVOKABLE void drain(int percent) { m_fake.Emit(ipodkit::BatteryChanged{ipodkit::Battery{percent, {}}}); }
    Q_INVOKABLE void fill(int count)
    {
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) names.push_back("Song " + std::to_string(i));
        m_fake.SetList(ipodkit::ListKind::Database, std::move(names));
    }
    Q_INVOKABLE QString lastCall() const { return QString::fromStdString(m_fake.Calls().back()); }
    Q_INVOKABLE void refuse(const QString& method)
    {
        m_fake.Fail(method.toStdString(), {ipodkit::ErrorKind::Refused, "not now"});
    }

private:
    ipodkit::FakeSession m_fake;
};

class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->addImportPath("qrc:/");
        engine->rootContext()->setContextProperty("fake", new Fake);
    }
};
}  // namespace

QUICK_TEST_MAIN_WITH_SETUP(Ipod, Setup)

#include "module_test.moc"
