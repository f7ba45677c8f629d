/// @file
/// Requests whose data goes through shared memory. The answer says only that the data is there.
#pragma once

#include <ipodkit/list_kind.h>

#include "commands/records.h"
#include "sharing/place.h"

namespace ipodkit
{
/// The picture of the playing track goes into VecArtworkBufferShareMemory.
Request<PictureHead> AskForArtwork(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline);

/// Sends the content of VecEapWriteBufferShareMemory.
Request<void> AskToWrite(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline,
                         std::uint16_t session);

/// Flags of a page; both are false for lists other than the database.
struct PageHead
{
    bool folders = false;
    bool root = false;
};

/// The entries from @p first to @p last go into the vector of the list. ErrorKind::Refused when the service says that
/// it did not fill it.
Request<PageHead> AskForPage(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline, ListKind kind,
                             int first, int last);

/// The lock of the list's vector.
Place PlaceOf(ListKind kind);

/// The entries that the service has put there; nothing when the vector cannot be read.
std::optional<std::vector<std::string>> NamesOf(ListKind kind);
}  // namespace ipodkit
