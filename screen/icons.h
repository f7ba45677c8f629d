/// @file
/// The image provider `image://icon/NAME/COLOR`: the icons of the screen in any size and color.
#pragma once

#include <QQuickImageProvider>

namespace screen
{
class Icons : public QQuickImageProvider
{
public:
    Icons() : QQuickImageProvider(Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};
}  // namespace screen
