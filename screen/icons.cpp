#include "icons.h"

#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

namespace screen
{
namespace
{
// Paths in a square of 24 units, drawn with a line of 2 units.
const QHash<QString, QString>& Paths()
{
    static const QHash<QString, QString> paths{
        {"play", "M8 5l11 7-11 7z"},
        {"pause", "M7 5h2.5v14H7zM14.5 5H17v14h-2.5z"},
        {"next", "M5.5 6l8.5 6-8.5 6zM18 6v12"},
        {"previous", "M18.5 6L10 12l8.5 6zM6 6v12"},
        {"shuffle", "M3 7h3c5 0 6 10 11 10h4M3 17h3c5 0 6-10 11-10h4M18.5 4.5L21 7l-2.5 2.5M18.5 14.5L21 17l-2.5 2.5"},
        {"repeat",
         "M4 12V9.5a3.5 3.5 0 0 1 3.5-3.5H19M16.5 3.5L19 6l-2.5 2.5"
         "M20 12v2.5a3.5 3.5 0 0 1-3.5 3.5H5M7.5 15.5L5 18l2.5 2.5"},
        {"repeat-one",
         "M4 12V9.5a3.5 3.5 0 0 1 3.5-3.5H19M16.5 3.5L19 6l-2.5 2.5"
         "M20 12v2.5a3.5 3.5 0 0 1-3.5 3.5H5M7.5 15.5L5 18l2.5 2.5M11 10.5l1.5-1v5"},
        {"now", "M3 12a9 9 0 1 0 18 0a9 9 0 1 0-18 0M10 8.5l5.5 3.5-5.5 3.5z"},
        {"library", "M4 5v14M9 5v14M13.5 6l4.5 13"},
        {"queue", "M4 6h16M4 12h8M4 18h8M16 12.5l5 3.5-5 3.5z"},
        {"device",
         "M9.5 3h5a2.5 2.5 0 0 1 2.5 2.5v13a2.5 2.5 0 0 1-2.5 2.5h-5a2.5 2.5 0 0 1-2.5-2.5"
         "v-13a2.5 2.5 0 0 1 2.5-2.5zM11 17.5h2"},
        {"note",
         "M9 17.5V6l10-2v11.5M9 17.5a2.5 2.5 0 1 1-5 0a2.5 2.5 0 1 1 5 0"
         "M19 15.5a2.5 2.5 0 1 1-5 0a2.5 2.5 0 1 1 5 0"},
        {"back", "M15 5l-7 7 7 7"},
        {"forward", "M9 5l7 7-7 7"},
        {"search", "M17 10.5a6.5 6.5 0 1 1-13 0a6.5 6.5 0 1 1 13 0M15.5 15.5L21 21"},
        {"close", "M6 6l12 12M18 6L6 18"},
        {"erase", "M8.5 5H21v14H8.5L3 12zM12 9.5l5 5M17 9.5l-5 5"},
        {"phone", "M6 3h3l2 5-2.5 1.5a12 12 0 0 0 6 6L16 13l5 2v3a3 3 0 0 1-3 3C10.5 21 3 13.5 3 6a3 3 0 0 1 3-3z"},
        {"sun",
         "M16 12a4 4 0 1 1-8 0a4 4 0 1 1 8 0M12 2.5v2M12 19.5v2M2.5 12h2M19.5 12h2M5.300 5.300l1.400 1.400"
         "M17.300 17.300l1.400 1.400M5.300 18.700l1.400-1.400M17.300 6.700l1.400-1.400"},
        {"moon", "M20 14.5A8.5 8.5 0 1 1 9.5 4a7 7 0 0 0 10.5 10.5z"},
        {"car", "M4 17v-4.5L6.5 6.5h11L20 12.5V17zM4 12.5h16M6.5 17v2.5M17.5 17v2.5M7.5 15h1M15.5 15h1"},
        {"alert", "M12 4l9 16H3zM12 10.5v4M12 17v.1"},
        {"unplugged", "M9 3v4.5M15 3v4.5M6 7.5h12V11a6 6 0 0 1-12 0zM12 17v4"},
        {"playing", "M5 11v7M10 6v12M15 9v9M20 13v5"},
    };
    return paths;
}

bool IsFilled(const QString& name)
{
    return name == "play" || name == "pause" || name == "next" || name == "previous";
}

QByteArray Svg(const QString& name, const QString& color)
{
    const QString fill = IsFilled(name) ? color : QStringLiteral("none");
    return QStringLiteral(
               "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><path d='%1' fill='%2' stroke='%3' "
               "stroke-width='2' stroke-linecap='round' stroke-linejoin='round'/></svg>")
        .arg(Paths().value(name), fill, color)
        .toUtf8();
}
}  // namespace

QImage Icons::requestImage(const QString& id, QSize* size, const QSize& requested)
{
    const QStringList parts = id.split('/');
    QImage image(requested.isValid() ? requested : QSize(24, 24), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(Svg(parts.value(0), "#" + parts.value(1)));
    QPainter painter(&image);
    renderer.render(&painter);
    *size = image.size();
    return image;
}
}  // namespace screen
