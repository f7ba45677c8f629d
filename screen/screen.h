/// @file
/// The window of the media screen.
#pragma once

#include <QQuickView>
#include <QSize>
#include <QString>
#include <array>

namespace screen
{
struct Options
{
    QSize size{1280, 720};
    QString page = "nowplaying";  ///< "nowplaying", "browse", "queue", or "devices"
    bool night = true;
    std::array<int, 3> knob{Qt::Key_Left, Qt::Key_Right, Qt::Key_Return};  ///< keys of the knob: left, right, press
    bool animated = true;  ///< false: changes appear at once, for screenshots
};

/// Loads the screen into @p view, which is not shown yet.
/// @throws std::runtime_error  Qt runs without GLib's event dispatcher, or a QML module is missing
void Load(QQuickView& view, const Options& options);
}  // namespace screen
