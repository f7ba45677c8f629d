/// @file
/// The lists that an application may read.
#pragma once

namespace ipodkit
{
enum class ListKind
{
    Playing,
    Database,  ///< the current level of the music database
    DatabasePinyin,
    Update,  ///< the list that the device is updating; the service does not tell its size
    UpdatePinyin,
    Devices,  ///< always one page
};
}  // namespace ipodkit
