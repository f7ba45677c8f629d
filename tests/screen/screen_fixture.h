/// @file
/// The screen in a window, connected to a simulated service.
#pragma once

#include <gtest/gtest.h>
#include <ipodkit/testing.h>
#include <ipodsim.h>

#include <QQuickItem>
#include <QQuickView>
#include <functional>
#include <memory>
#include <optional>

#include "screen.h"

namespace screentest
{
/// Warnings of Qt and QML so far. The fixture fails a test that causes any.
QStringList& Warnings();

/// Stops the bus of the test process for good.
extern std::function<void()> StopBus;

/// Runs the loop until the condition holds; returns whether it did within some seconds.
bool Until(const std::function<bool()>& condition);

class ScreenTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the service with the built-in library, or with @p options.
    void StartService(const ipodsim::Options& options = {});
    void StopService() { m_service.reset(); }
    ipodsim::Simulator& Service() { return *m_service; }

    /// A session without a service, for what the simulator cannot do. Call it before Show().
    ipodkit::FakeSession& Fake();

    /// Shows the screen, and waits for the window.
    void Show(const screen::Options& options);
    void Show() { Show(Still()); }
    static screen::Options Still(const QString& page = "nowplaying", QSize size = {1280, 720});
    QQuickView& Window() { return *m_window; }

    /// Plays the song of that title, and waits until the screen shows it.
    void PlaySong(const QString& title);

    /// Plays that song, pauses it in the middle, and lowers the battery level, so that pages have contents to show.
    void PauseInTheMiddle(const QString& title);

    /// Returns the item of that name; fails the test if there is none.
    QQuickItem* Item(const QString& name);
    bool IsShown(const QString& name);
    QString TextOf(const QString& name);

    /// Calls @p use with each visible item.
    void ForEachItem(const std::function<void(QQuickItem&)>& use);

    /// Returns the texts of all visible items, one per line.
    QString VisibleTexts();
    bool Shows(const QString& text) { return VisibleTexts().split('\n').contains(text); }

    /// @name User input
    /// @{
    void Tap(const QString& name);
    void TapText(const QString& text);
    void Press(int key);
    void Type(const QString& text);
    /// @}

private:
    QQuickItem* ItemWithText(const QString& text);
    void TapItem(const QQuickItem& item);

    std::unique_ptr<ipodsim::Simulator> m_service;
    std::unique_ptr<ipodkit::FakeSession> m_fake;
    std::unique_ptr<QQuickView> m_window;
};
}  // namespace screentest
