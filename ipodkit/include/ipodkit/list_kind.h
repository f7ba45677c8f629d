/// @file
/// The lists that an application may read.
#pragma once

namespace ipodkit
{
/// A list of the service. The pinyin lists have the same entries in the same order, spelled in pinyin.
enum class ListKind
{
    Playing,   ///< the playing list: what plays now and next
    Database,  ///< the current level of the music database
    DatabasePinyin,
    Update,  ///< the list that the device is updating; the service does not report its size
    UpdatePinyin,
    Devices,  ///< always one page
};
}  // namespace ipodkit
