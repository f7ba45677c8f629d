// ipod-screen: a media screen for a head unit.
#include <QBXLog.h>

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QKeySequence>
#include <QTimer>
#include <cstdio>
#include <stdexcept>

#include "screen.h"

namespace
{
constexpr int kUsageError = 2;
constexpr int kPictureDelay = 2000;  // in milliseconds; by then artwork and lists have arrived

struct Arguments
{
    screen::Options options;
    QString screenshot;
};

QSize ToSize(const QString& text)
{
    const QStringList parts = text.split('x');
    const QSize size(parts.value(0).toInt(), parts.value(1).toInt());
    if (parts.size() != 2 || size.width() < 640 || size.height() < 400)
        throw std::invalid_argument("--size: expected WIDTHxHEIGHT, at least 640x400, got '" + text.toStdString() +
                                    "'");
    return size;
}

std::array<int, 3> ToKnob(const QString& text)
{
    const QStringList names = text.split(',');
    std::array<int, 3> keys{};
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        const QKeySequence sequence(names.value(static_cast<int>(i)));
        keys[i] = sequence.count() == 1 ? sequence[0].key() : Qt::Key_unknown;
        if (keys[i] == Qt::Key_unknown || names.size() != 3)
            throw std::invalid_argument("--knob: expected three keys such as Left,Right,Return, got '" +
                                        text.toStdString() + "'");
    }
    return keys;
}

QString OneOf(const QStringList& values, const QString& option, const QString& value)
{
    if (!values.contains(value))
        throw std::invalid_argument("--" + option.toStdString() + ": expected " + values.join(", ").toStdString() +
                                    ", got '" + value.toStdString() + "'");
    return value;
}

Arguments Parse(const QCoreApplication& app)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Show and control playback of an attached device");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({{"size", "Size of the window", "WIDTHxHEIGHT", "1280x720"},
                       {"theme", "Color theme: day or night", "THEME", "night"},
                       {"page", "Show this page first: nowplaying, browse, queue, or devices", "PAGE", "nowplaying"},
                       {"knob", "Keys of the rotary knob: left, right, press", "KEYS", "Left,Right,Return"},
                       {"screenshot", "Write a screenshot to FILE after two seconds, and exit", "FILE"}});
    parser.process(app);
    Arguments arguments;
    arguments.options.size = ToSize(parser.value("size"));
    arguments.options.night = OneOf({"day", "night"}, "theme", parser.value("theme")) == "night";
    arguments.options.page = OneOf({"nowplaying", "browse", "queue", "devices"}, "page", parser.value("page"));
    arguments.options.knob = ToKnob(parser.value("knob"));
    arguments.screenshot = parser.value("screenshot");
    arguments.options.animated = arguments.screenshot.isEmpty();
    return arguments;
}

int Run(QGuiApplication& app)
{
    const Arguments arguments = Parse(app);
    QQuickView view;
    screen::Load(view, arguments.options);
    view.show();
    if (!arguments.screenshot.isEmpty())
        QTimer::singleShot(kPictureDelay,
                           [&] { QGuiApplication::exit(view.grabWindow().save(arguments.screenshot) ? 0 : 1); });
    return QGuiApplication::exec();
}
}  // namespace

int main(int argc, char** argv)
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName("ipod-screen");
    QGuiApplication::setApplicationVersion(SCREEN_VERSION);
    try
    {
        return Run(app);
    }
    catch (const std::invalid_argument& error)
    {
        std::fprintf(stderr, "ipod-screen: %s\n", error.what());
        return kUsageError;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "ipod-screen: %s\n", error.what());
        return 1;
    }
}
