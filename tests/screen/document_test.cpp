// The example of docs/qml.md, as it is printed there.
#include <QFile>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTest>

#include "screen_fixture.h"

namespace screentest
{
namespace
{
using Document = ScreenTest;

QString Example()
{
    QFile document(DOCS "/qml.md");
    EXPECT_TRUE(document.open(QIODevice::ReadOnly | QIODevice::Text));
    static const QRegularExpression block("```qml\n(.*?)```", QRegularExpression::DotMatchesEverythingOption);
    return block.match(QString::fromUtf8(document.readAll())).captured(1);
}

QStringList TextsIn(const QQuickItem& item)
{
    QStringList texts;
    for (const QQuickItem* const child : item.childItems()) texts.append(child->property("text").toString());
    return texts;
}
}  // namespace

TEST_F(Document, ItsExampleShowsAndControlsTheTrackIn25Lines)
{
    const QString example = Example();
    EXPECT_LE(example.count('\n'), 25);
    ipodkit::PlayerState state = ipodkit::FakeSession::ReadyState();
    state.track = ipodkit::Track{"<b>Low Water</b>", "Harbour Quartet"};
    state.status = ipodkit::PlayStatus::Playing;
    Fake().SetState(state);
    QQuickView window;
    QQmlComponent component(window.engine());
    component.setData(example.toUtf8(), QUrl());
    auto* const root = qobject_cast<QQuickItem*>(component.create());
    ASSERT_NE(root, nullptr) << component.errorString().toStdString();
    window.setContent(QUrl(), &component, root);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_TRUE(TextsIn(*root).contains("<b>Low Water</b>") && TextsIn(*root).contains("Harbour Quartet"));
    QTest::mouseClick(&window, Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(Until([this] { return Fake().Calls().back() == "Pause()"; }));
}
}  // namespace screentest
