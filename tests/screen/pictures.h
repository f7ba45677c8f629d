/// @file
/// Compares screenshots with the committed reference images.
#pragma once

#include <QImage>
#include <QString>
#include <string>

namespace screentest
{
/// Returns how a picture differs from the reference FILE; empty when it does not: at most one pixel in 200 may differ
/// visibly, because versions of fonts and libraries draw edges differently. With IPOD_UPDATE_PICTURES in the
/// environment the picture becomes the reference.
std::string DifferenceFrom(const QString& file, const QImage& picture);
}  // namespace screentest
