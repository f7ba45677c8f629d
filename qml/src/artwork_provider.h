/// @file
/// The image provider `image://ipod/…`: artwork by its hash, decoded on a thread of its own.
#pragma once

#include <ipodkit/picture.h>

#include <QQuickImageProvider>

class QQmlEngine;

namespace ipodqml
{
/// Keeps the last images available to the providers of all engines.
void KeepForProviders(const ipodkit::PicturePtr& picture);

/// Adds the provider to an engine that has none.
void AddArtworkProvider(QQmlEngine& engine);

/// Answers `HASH` with the image, `HASH/rounded/RADIUS` with its corners rounded, and `HASH/backdrop/COLOR` with a
/// blurred one that is mixed with COLOR so far that text on it stays legible. An image that is damaged, too large to
/// decode, or not available any more is transparent.
class ArtworkProvider : public QQuickImageProvider
{
public:
    ArtworkProvider() : QQuickImageProvider(Image, ForceAsynchronousImageLoading) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};
}  // namespace ipodqml
