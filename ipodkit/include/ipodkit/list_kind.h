/// @file
/// The lists that an application may read.
#pragma once

namespace ipodkit
{
/// A list of the service. Each but Playing and Devices has the same entries in pinyin.
enum class ListKind
{
    Playing,   ///< what plays, and what comes next
    Database,  ///< the current level of the music database
    DatabasePinyin,
    Update,  ///< the list that the device is updating; the service does not tell its size
    UpdatePinyin,
    Devices,  ///< always one page
};
}  // namespace ipodkit
