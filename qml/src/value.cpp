#include "value.h"

namespace ipodqml
{
QString PropertyName(const char* rowName)
{
    QString name;
    bool upper = false;
    for (const QChar letter : QString::fromLatin1(rowName))
    {
        if (letter != '_') name += upper ? letter.toUpper() : letter;
        upper = letter == '_';
    }
    return name;
}

QString ArtworkAddress(const ipodkit::PicturePtr& picture)
{
    if (picture == nullptr) return {};
    return QStringLiteral("image://ipod/%1").arg(picture->hash, 16, 16, QLatin1Char('0'));
}
}  // namespace ipodqml
