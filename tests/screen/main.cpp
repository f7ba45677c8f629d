// Starts the tests of the screen. CTest runs each in its own process, because a process has one session.
#include <QBXLog.h>
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <cstdio>

#include "screen_fixture.h"
#include "support/private_bus.h"
#include "support/private_shared_memory.h"

namespace
{
// Damaged images cause warnings, too, as they should.
void Collect(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtFatalMsg) std::fprintf(stderr, "%s\n", qPrintable(text));
    const bool ofImage = QString(context.category).startsWith("qt.gui.imageio");
    if (type != QtDebugMsg && type != QtInfoMsg && !ofImage) screentest::Warnings().append(text);
}
}  // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
    const test::PrivateSharedMemory privateSharedMemory;
    const QByteArray display = qgetenv("DISPLAY");
    test::PrivateBus bus;
    screentest::StopBus = [&bus] { bus.Stop(); };
    // GLib's bus for tests removes it.
    qputenv("DISPLAY", display);
    QBX_LogInit("ERROR");
    qInstallMessageHandler(Collect);
    QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
