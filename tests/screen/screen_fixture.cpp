#include "screen_fixture.h"

#include <ipodqml/session.h>

#include <QTest>

namespace screentest
{
namespace
{
constexpr int kPatience = 15000;  // milliseconds, for busy machines

// Calls @p use with each visible item until it returns true.
bool AnyVisible(QQuickItem& item, const std::function<bool(QQuickItem&)>& use)
{
    if (!item.isVisible()) return false;
    if (use(item)) return true;
    for (QQuickItem* child : item.childItems())
        if (AnyVisible(*child, use)) return true;
    return false;
}
}  // namespace

std::function<void()> StopBus;

QStringList& Warnings()
{
    static QStringList warnings;
    return warnings;
}

bool Until(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, kPatience);
}

void ScreenTest::SetUp()
{
    Warnings().clear();
}

void ScreenTest::TearDown()
{
    m_window.reset();
    EXPECT_TRUE(Warnings().isEmpty()) << Warnings().join('\n').toStdString();
}

void ScreenTest::StartService(const ipodsim::Options& options)
{
    m_service = std::make_unique<ipodsim::Simulator>(options);
}

ipodkit::FakeSession& ScreenTest::Fake()
{
    if (m_fake == nullptr)
    {
        m_fake = std::make_unique<ipodkit::FakeSession>();
        ipodqml::Session::Use(m_fake->Get());
    }
    return *m_fake;
}

screen::Options ScreenTest::Still(const QString& page, QSize size)
{
    screen::Options options;
    options.page = page;
    options.size = size;
    options.animated = false;
    return options;
}

void ScreenTest::Show(const screen::Options& options)
{
    m_window = std::make_unique<QQuickView>();
    screen::Load(*m_window, options);
    m_window->show();
    m_window->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
}

void ScreenTest::PlaySong(const QString& title)
{
    ASSERT_TRUE(Until([this] { return !IsShown("problem"); }));
    Tap("page-browse");
    TapText("Songs");
    TapText(title);
    ASSERT_TRUE(Until([&] { return TextOf("title") == title; }));
}

void ScreenTest::PauseInTheMiddle(const QString& title)
{
    PlaySong(title);
    Service().Do("battery", {{"level", 64}, {"charging-status", "discharging"}});
    Tap("play");
    ASSERT_TRUE(Until([this] { return Item("play")->property("icon").toString() == "play"; }));
    Tap("seekBar");
    ASSERT_TRUE(Until([this] { return Item("seekBar")->property("elapsed").toInt() > 60000 && Shows("64 %"); }));
}

QQuickItem* ScreenTest::Item(const QString& name)
{
    QQuickItem* found = nullptr;
    const auto named = [&](QQuickItem& item) { return item.objectName() == name && (found = &item) != nullptr; };
    Until([&] { return AnyVisible(*m_window->rootObject(), named); });
    EXPECT_NE(found, nullptr) << "no visible item " << name.toStdString();
    return found;
}

bool ScreenTest::IsShown(const QString& name)
{
    return AnyVisible(*m_window->rootObject(), [&name](QQuickItem& item) { return item.objectName() == name; });
}

QString ScreenTest::TextOf(const QString& name)
{
    QString text;
    AnyVisible(*m_window->rootObject(),
               [&](QQuickItem& item)
               {
                   if (item.objectName() != name) return false;
                   text = item.property("text").toString();
                   return true;
               });
    return text;
}

void ScreenTest::ForEachItem(const std::function<void(QQuickItem&)>& use)
{
    AnyVisible(*m_window->rootObject(),
               [&use](QQuickItem& item)
               {
                   use(item);
                   return false;
               });
}

QString ScreenTest::VisibleTexts()
{
    QStringList texts;
    ForEachItem(
        [&texts](const QQuickItem& item)
        {
            const QString text = item.property("text").toString();
            if (!text.isEmpty()) texts.append(text);
        });
    return texts.join('\n');
}

QQuickItem* ScreenTest::ItemWithText(const QString& text)
{
    QQuickItem* found = nullptr;
    const auto has = [&](QQuickItem& item)
    { return item.property("text").toString() == text && (found = &item) != nullptr; };
    Until([&] { return AnyVisible(*m_window->rootObject(), has); });
    EXPECT_NE(found, nullptr) << "no visible text " << text.toStdString() << " among " << VisibleTexts().toStdString();
    return found;
}

// Positioners move their items with the next frame.
void ScreenTest::TapItem(const QQuickItem& item)
{
    const auto center = [&item] { return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint(); };
    Until([&] { return QRect({}, m_window->size()).contains(center()); });
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, center());
}

void ScreenTest::Tap(const QString& name)
{
    if (const QQuickItem* const item = Item(name)) TapItem(*item);
}

void ScreenTest::TapText(const QString& text)
{
    if (const QQuickItem* const item = ItemWithText(text)) TapItem(*item);
}

void ScreenTest::Press(int key)
{
    QTest::keyClick(m_window.get(), static_cast<Qt::Key>(key));
}

void ScreenTest::Type(const QString& text)
{
    for (const QChar letter : text) QTest::keyClick(m_window.get(), letter.toLatin1());
}
}  // namespace screentest
