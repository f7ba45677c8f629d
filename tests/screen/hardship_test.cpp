// Hostile input, long lists, and accessibility.
#include <QAccessible>
#include <QBuffer>
#include <QColor>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <ctime>

#include "screen_fixture.h"

namespace screentest
{
namespace
{
using Robustness = ScreenTest;
using Accessibility = ScreenTest;
using namespace std::chrono_literals;

constexpr int kMany = 50'000;

ipodkit::PlayerState Playing(const ipodkit::Track& track)
{
    ipodkit::PlayerState state = ipodkit::FakeSession::ReadyState();
    state.track = track;
    state.status = ipodkit::PlayStatus::Paused;
    state.deviceCount = 1;
    state.deviceName = "Fake";
    return state;
}

ipodkit::PicturePtr PictureOf(const std::string& bytes)
{
    return std::make_shared<ipodkit::Picture>(ipodkit::Examine({bytes.begin(), bytes.end()}));
}

void FillDatabase(ipodkit::FakeSession& fake)
{
    std::vector<std::string> names;
    for (int i = 0; i < kMany; ++i) names.push_back("Song " + std::to_string(i));
    fake.SetList(ipodkit::ListKind::Database, names);
}

// Records the longest time that one frame took.
class FrameTimes
{
public:
    explicit FrameTimes(QQuickWindow& window)
    {
        QObject::connect(
            &window, &QQuickWindow::beforeSynchronizing, &window, [this] { m_frame.start(); }, Qt::DirectConnection);
        QObject::connect(
            &window, &QQuickWindow::frameSwapped, &window, [this] { End(); }, Qt::DirectConnection);
    }
    qint64 Longest() const { return m_longest; }
    int Frames() const { return m_frames; }

private:
    void End()
    {
        m_longest = std::max(m_longest, m_frame.elapsed());
        ++m_frames;
    }

    QElapsedTimer m_frame;
    qint64 m_longest = 0;
    int m_frames = 0;
};

// Records the longest turn of the event loop, in real time and in time of the processor.
class Heartbeat
{
public:
    Heartbeat()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { Beat(); });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.start(1ms);
        m_real.start();
    }
    qint64 Longest() const { return m_longest; }                 // in milliseconds
    double LongestOfProcessor() const { return m_longestBusy; }  // likewise

private:
    static double Busy()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }
    void Beat()
    {
        const double busy = Busy();
        m_longest = std::max(m_longest, m_real.restart());
        m_longestBusy = std::max(m_longestBusy, busy - m_busy);
        m_busy = busy;
    }

    QTimer m_timer;
    QElapsedTimer m_real;
    double m_busy = Busy();
    qint64 m_longest = 0;
    double m_longestBusy = 0;
};

double Luminance(const QColor& color)
{
    const auto linear = [](double part)
    { return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double Contrast(const QColor& one, const QColor& other)
{
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}
// Returns the color behind texts for artwork of one color.
QColor Backdrop(ipodkit::FakeSession& fake, QQmlEngine& engine, const QColor& artwork, const QColor& background)
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(artwork);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    ipodkit::PlayerState state = Playing({"Title"});
    state.artwork = PictureOf(bytes.toStdString());
    fake.SetState(state);
    auto* const provider = static_cast<QQuickImageProvider*>(engine.imageProvider("ipod"));
    const QString hash = QString("%1").arg((*state.artwork)->hash, 16, 16, QLatin1Char('0'));
    QSize size;
    return provider->requestImage(hash + "/backdrop/" + background.name().mid(1), &size, {20, 20}).pixelColor(10, 10);
}
}  // namespace

TEST_F(Robustness, MarkupIsShownAsText)
{
    const ipodkit::Track hostile{"<img src='file:///etc/passwd'><b>Title</b>", "&lt;i&gt;", "<a href='x'>y</a>"};
    Fake().SetState(Playing(hostile));
    Show();
    EXPECT_TRUE(Until([&] { return TextOf("title") == QString::fromStdString(hostile.title); }));
    ForEachItem(
        [](QQuickItem& item)
        {
            const QVariant format = item.property("textFormat");
            EXPECT_TRUE(!format.isValid() || format.toInt() == Qt::PlainText)
                << item.property("text").toString().toStdString();
        });
}

TEST_F(Robustness, NamesOfAnyLengthScriptAndEncodingAreShown)
{
    Fake().SetState(Playing({std::string(255, 'W'), "فيروز", std::string("\xff\xfe\x80 broken", 11)}));
    Show(Still("nowplaying", {800, 480}));
    EXPECT_TRUE(Until([this] { return TextOf("artist") == "فيروز"; }));
    EXPECT_FALSE(Window().grabWindow().isNull());
}

TEST_F(Robustness, ImagesThatCannotBeDecodedLeaveTheNote)
{
    Fake().SetState(Playing({"Title"}));
    Show();
    const std::string hugePng("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\xff\xff\0\0\xff\xff\x08\6\0\0\0\0\0\0\0", 33);
    for (const std::string& bytes : {hugePng, std::string("\xff\xd8\xff\xe0 no jpeg"), std::string("nothing")})
    {
        ipodkit::PlayerState state = Playing({"Title"});
        state.artwork = PictureOf(bytes);
        Fake().SetState(state);
        EXPECT_TRUE(Until([this] { return Item("artwork")->property("status").toInt() == 1; }));
    }
    EXPECT_EQ(TextOf("title"), "Title");
}

TEST_F(Robustness, ACallThatNeverEndsCanBeHidden)
{
    Fake().SetState(Playing({"Title"}));
    Show();
    ipodkit::PlayerState state = Playing({"Title"});
    state.calls["1"].status = ipodkit::CallStatus::Ringing;
    Fake().SetState(state);
    Tap("hideCall");
    EXPECT_TRUE(Until([this] { return !IsShown("call") && TextOf("banner").contains("Unknown number"); }));
}

TEST_F(Robustness, AListOf50000NamesIsFlungWithoutAReset)
{
    FillDatabase(Fake());
    Fake().SetState(Playing({"Title"}));
    Show(Still("browse", {800, 480}));
    ASSERT_TRUE(Until([this] { return Shows("Song 0"); }));
    QQuickItem* const list = Item("names");
    auto* const model = list->property("model").value<QObject*>();
    const QSignalSpy resets(model, SIGNAL(modelReset()));
    const FrameTimes frames(Window());
    for (int fling = 0; fling < 8; ++fling)
    {
        QMetaObject::invokeMethod(list, "flick", Q_ARG(double, 0.0), Q_ARG(double, -20000.0));
        QTest::qWait(150);
    }
    EXPECT_GT(list->property("contentY").toDouble(), 5000);
    QMetaObject::invokeMethod(list, "positionViewAtEnd");
    EXPECT_TRUE(Until([this] { return Shows("Song 49999"); }));
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(list->property("count").toInt(), kMany);
    std::printf("longest of %d frames: %lld ms\n", frames.Frames(), static_cast<long long>(frames.Longest()));
}

TEST_F(Robustness, ADeviceThatDisappearsWhileItsListIsFlungLeavesAMessage)
{
    StartService();
    Show(Still("browse", {800, 480}));
    TapText("Songs");
    QQuickItem* const list = Item("names");
    QMetaObject::invokeMethod(list, "flick", Q_ARG(double, 0.0), Q_ARG(double, -9000.0));
    Service().Do("detach", "Desk iPod");
    EXPECT_TRUE(Until([this] { return Shows("No device"); }));
}

TEST_F(Robustness, ABusThatDiesLeavesAMessage)
{
    Show();
    ASSERT_TRUE(Until([this] { return Shows("It has not started yet."); }));
    StopBus();
    EXPECT_TRUE(Until([this] { return VisibleTexts().contains("DBUS_SESSION_BUS_ADDRESS"); }))
        << VisibleTexts().toStdString();
}

TEST_F(Robustness, AHungServiceDoesNotBlockTheLoop)
{
    StartService();
    Show(Still("browse"));
    TapText("Artists");
    ASSERT_TRUE(Until([this] { return Shows("Nadia Brandt"); }));
    auto* const music = Item("names")->property("model").value<QObject*>();
    QQuickItem* const queue = Window().rootObject()->findChild<QQuickItem*>("queue");
    auto* const player = Window().engine()->singletonInstance<QObject*>(qmlTypeId("Ipod", 1, 0, "Player"));
    ASSERT_NE(player, nullptr);
    Window().hide();  // a frame without a GPU would take longer
    Service().Do("fault", "no-reply");
    const Heartbeat heartbeat;
    for (const char* command : {"play", "next", "previous", "toggle", "pause"})
        QMetaObject::invokeMethod(player, command);
    QMetaObject::invokeMethod(player, "seek", Q_ARG(double, 5000));
    QMetaObject::invokeMethod(music, "open", Q_ARG(int, 2));
    QMetaObject::invokeMethod(queue->property("model").value<QObject*>(), "play", Q_ARG(int, 0));
    Service().Do("battery", {{"level", 4}});
    QEventLoop loop;  // QTest::qWait() sleeps between its turns
    QTimer::singleShot(1500, &loop, &QEventLoop::quit);
    loop.exec();
    std::printf("longest turn: %lld ms, %.1f ms of them busy\n", static_cast<long long>(heartbeat.Longest()),
                heartbeat.LongestOfProcessor());
    EXPECT_LT(heartbeat.Longest(), 200);  // a blocking call would last for seconds
    EXPECT_LE(heartbeat.LongestOfProcessor(), 5);
}

TEST_F(Robustness, AServiceThatNeverAnswersLeavesAMessage)
{
    StartService();
    Service().Do("fault", "no-reply");
    Show();
    EXPECT_TRUE(Until([this] { return Shows("Connecting"); }));
    Service().Do("clear-faults");
    EXPECT_TRUE(Until([this] { return !IsShown("problem"); }));
}

TEST_F(Accessibility, EachControlHasANameAndIsLargeEnough)
{
    StartService();
    for (const QSize size : {QSize(1280, 720), QSize(800, 480)})
        for (const char* page : {"nowplaying", "browse", "queue", "devices"})
        {
            Show(Still(page, size));
            ASSERT_TRUE(Until([this] { return !IsShown("problem"); }));
            if (IsShown("search")) Tap("search");
            int controls = 0;
            ForEachItem(
                [&](QQuickItem& item)
                {
                    if (!item.activeFocusOnTab()) return;
                    ++controls;
                    QAccessibleInterface* const shown = QAccessible::queryAccessibleInterface(&item);
                    ASSERT_NE(shown, nullptr) << item.objectName().toStdString();
                    EXPECT_FALSE(shown->text(QAccessible::Name).isEmpty()) << item.objectName().toStdString();
                    EXPECT_GE(item.width(), 76) << item.objectName().toStdString();
                    EXPECT_GE(item.height(), 76) << item.objectName().toStdString();
                });
            EXPECT_GE(controls, 6);
        }
}

TEST_F(Accessibility, TextsHaveEnoughContrast)
{
    Fake().SetState(Playing({"Title"}));
    Show();
    const auto* const theme = Window().rootObject()->property("theme").value<QObject*>();
    for (const bool night : {true, false})
    {
        Window().rootObject()->setProperty("night", night);
        const auto color = [theme](const char* name) { return theme->property(name).value<QColor>(); };
        for (const char* surface : {"background", "surface", "raised"})
            for (const char* text : {"text", "quiet", "accent"})
                EXPECT_GE(Contrast(color(text), color(surface)), 4.5)
                    << text << " on " << surface << ", night: " << night;
        for (const char* artwork : {"black", "white"})
            for (const char* text : {"text", "quiet"})
            {
                const QColor behind = Backdrop(Fake(), *Window().engine(), artwork, color("background"));
                EXPECT_GE(Contrast(color(text), behind), 4.5) << text << " on " << artwork << ", night: " << night;
            }
        EXPECT_GE(Contrast(color("accentText"), color("accent")), 4.5);
    }
}
}  // namespace screentest
