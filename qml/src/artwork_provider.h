/// @file
/// The image provider `image://ipod/…`: artwork by its hash, decoded on a separate thread.
#pragma once

#include <ipodkit/picture.h>

#include <QQuickImageProvider>

class QQmlEngine;

namespace ipodqml
{
/// Makes an image available to the providers of all engines, until four newer ones replace it. Any thread.
void KeepForProviders(const ipodkit::PicturePtr& picture);

/// Adds the provider to an engine that has none.
void AddArtworkProvider(QQmlEngine& engine);

/// Provides `HASH`, the image; `HASH/rounded/RADIUS`, with rounded corners; and `HASH/backdrop/COLOR`, blurred and
/// mixed with COLOR until text on it is legible. An image that is damaged, too large to decode, or no longer available
/// is transparent.
class ArtworkProvider : public QQuickImageProvider
{
public:
    ArtworkProvider() : QQuickImageProvider(Image, ForceAsynchronousImageLoading) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};
}  // namespace ipodqml
