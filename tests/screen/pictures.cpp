#include "pictures.h"

#include <QColor>
#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cstdlib>

namespace screentest
{
namespace
{
constexpr int kVisible = 32;  // largest tolerated difference of a channel
constexpr int kOneIn = 200;   // pixels

bool Differs(QRgb one, QRgb other)
{
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other))}) > kVisible;
}

int DifferentPixels(const QImage& one, const QImage& other)
{
    int different = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) different += Differs(one.pixel(x, y), other.pixel(x, y)) ? 1 : 0;
    return different;
}

bool Save(const QImage& picture, const QString& file)
{
    QDir().mkpath(QFileInfo(file).path());
    return picture.convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0);
}
}  // namespace

std::string DifferenceFrom(const QString& file, const QImage& picture)
{
    if (std::getenv("IPOD_UPDATE_PICTURES") != nullptr)
        return Save(picture, file) ? "" : "cannot write " + file.toStdString();
    const QImage reference(file);
    const QString actual = QString(ACTUAL_PICTURES) + '/' + QFileInfo(file).fileName();
    Save(picture, actual);
    if (reference.size() != picture.size()) return "no picture of this size in " + file.toStdString();
    const int different = DifferentPixels(picture, reference);
    if (different <= picture.width() * picture.height() / kOneIn) return {};
    return std::to_string(different) + " pixels of " + actual.toStdString() + " differ from " + file.toStdString();
}
}  // namespace screentest
