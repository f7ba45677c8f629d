#include "artwork_provider.h"

#include <QBuffer>
#include <QColor>
#include <QImageReader>
#include <QMutex>
#include <QPainter>
#include <QQmlEngine>
#include <algorithm>
#include <deque>

#include "value.h"

namespace ipodqml
{
namespace
{
constexpr std::size_t kKept = 4;
constexpr int kLargest = 1024;         // pixels of the longer side
constexpr int kDecoderMebibytes = 64;  // enough for 4096 x 4096 pixels
constexpr double kTint = 0.88;         // weight of the tint; text stays legible on black and on white artwork

QMutex g_mutex;
std::deque<ipodkit::PicturePtr> g_kept;

ipodkit::PicturePtr Kept(const QString& hash)
{
    const QMutexLocker lock(&g_mutex);
    const auto found =
        std::find_if(g_kept.begin(), g_kept.end(),
                     [&hash](const ipodkit::PicturePtr& picture) { return ArtworkAddress(picture).endsWith(hash); });
    return found == g_kept.end() ? nullptr : *found;
}

QImage Transparent()
{
    QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage Decode(const ipodkit::Picture& picture, const QSize& wanted)
{
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(picture.bytes.data()),
                                               static_cast<qsizetype>(picture.bytes.size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize most = wanted.isValid() ? wanted : QSize(kLargest, kLargest);
    const QSize size = reader.size();
    if (size.isValid() && (size.width() > most.width() || size.height() > most.height()))
        reader.setScaledSize(size.scaled(most, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

// Scaling twice blurs better and faster than a filter.
QImage Backdrop(const QImage& image, const QColor& tint, const QSize& size)
{
    const auto smooth = Qt::SmoothTransformation;
    QImage blurred = image.scaled(7, 5, Qt::IgnoreAspectRatio, smooth).scaled(64, 40, Qt::IgnoreAspectRatio, smooth);
    blurred = blurred.scaled(size, Qt::IgnoreAspectRatio, smooth).convertToFormat(QImage::Format_RGB32);
    QPainter painter(&blurred);
    painter.setOpacity(kTint);
    painter.fillRect(blurred.rect(), tint);
    return blurred;
}

// Clipping in the scene graph would cost more and look worse without a GPU.
QImage Rounded(const QImage& image, int radius)
{
    QImage rounded(image.size(), QImage::Format_ARGB32_Premultiplied);
    rounded.fill(Qt::transparent);
    QPainter painter(&rounded);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(image);
    painter.drawRoundedRect(image.rect(), radius, radius);
    return rounded;
}

// Enlarges artwork that is smaller than its area.
QImage Enlarged(const QImage& image, const QSize& most)
{
    if (!most.isValid() || image.width() >= most.width() || image.height() >= most.height()) return image;
    return image.scaled(most, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage Styled(const QImage& image, const QStringList& style, const QSize& requested)
{
    if (style.value(1) == "rounded") return Rounded(Enlarged(image, requested), style.value(2).toInt());
    if (style.value(1) != "backdrop") return image;
    return Backdrop(image, QColor("#" + style.value(2)), requested.isValid() ? requested : QSize(800, 480));
}
}  // namespace

void KeepForProviders(const ipodkit::PicturePtr& picture)
{
    if (picture == nullptr) return;
    const QMutexLocker lock(&g_mutex);
    g_kept.push_back(picture);
    if (g_kept.size() > kKept) g_kept.pop_front();
}

void AddArtworkProvider(QQmlEngine& engine)
{
    QImageReader::setAllocationLimit(kDecoderMebibytes);
    if (engine.imageProvider("ipod") == nullptr) engine.addImageProvider("ipod", new ArtworkProvider);
}

QImage ArtworkProvider::requestImage(const QString& id, QSize* size, const QSize& requested)
{
    const QStringList parts = id.split('/');
    const ipodkit::PicturePtr picture = Kept(parts.first());
    const QImage image = picture == nullptr ? QImage() : Decode(*picture, requested);
    QImage styled = image.isNull() ? Transparent() : Styled(image, parts, requested);
    *size = styled.size();
    return styled;
}
}  // namespace ipodqml
