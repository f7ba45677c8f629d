// Qt D-Bus, with messages built by hand.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

#include "peer.h"
#include "protocol.h"

using namespace peers;

class QtPeer : public QObject, public Peer
{
    Q_OBJECT

public:
    QtPeer()
    {
        m_bus.connect(bench::kBusName, bench::kObjectPath, bench::kBusName, "OnPlayStatusChanged", this,
                      SLOT(OnEvent(uchar)));
    }

    bool Pause() override { return Call(bench::kObjectPath, bench::kBusName, "Pause").toBool(); }

    void RequestEvent() override { Call(bench::kObjectPath, bench::kBusName, "Seek", {0}); }

    void AwaitEvent() override
    {
        for (const int before = m_events; m_events == before;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    std::size_t Names() override
    {
        return static_cast<std::size_t>(Call(bench::kBenchPath, bench::kBenchInterface, "Names").toStringList().size());
    }

    std::size_t Image() override
    {
        const QVariant image = Call(bench::kBenchPath, bench::kBenchInterface, "Bytes").value<QDBusVariant>().variant();
        return static_cast<std::size_t>(image.toByteArray().size());
    }

private slots:
    void OnEvent(uchar) { ++m_events; }

private:
    QVariant Call(const char* path, const char* interface, const char* method, const QVariantList& arguments = {})
    {
        QDBusMessage call = QDBusMessage::createMethodCall(bench::kBusName, path, interface, method);
        call.setArguments(arguments);
        const QDBusMessage reply = m_bus.call(call);
        if (reply.type() != QDBusMessage::ReplyMessage)
        {
            std::fprintf(stderr, "the bus failed: %s\n", qPrintable(reply.errorMessage()));
            std::exit(1);
        }
        return reply.arguments().value(0);
    }

    QDBusConnection m_bus = QDBusConnection::sessionBus();
    int m_events = 0;
};

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return RunPeer(argc, argv, [] { return std::make_unique<QtPeer>(); });
}

#include "qt.moc"
