#include "value.h"

#include <ipodkit/variant.h>

namespace ipodqml
{
QString PropertyName(const char* rowName)
{
    std::string name = ipodkit::PropertyName(rowName);
    name.front() = *rowName;
    return QString::fromStdString(name);
}

QString ArtworkAddress(const ipodkit::PicturePtr& picture)
{
    if (picture == nullptr) return {};
    return QStringLiteral("image://ipod/%1").arg(picture->hash, 16, 16, QLatin1Char('0'));
}
}  // namespace ipodqml
