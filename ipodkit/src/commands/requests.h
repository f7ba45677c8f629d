/// @file
/// Requests whose data is transferred through shared memory. The answer only announces it.
#pragma once

#include <ipodkit/list_kind.h>

#include "commands/records.h"
#include "sharing/place.h"

namespace ipodkit
{
/// Makes the service store the artwork of the playing track in VecArtworkBufferShareMemory.
Request<PictureHead> AskForArtwork(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline);

/// Makes the service send the contents of VecEapWriteBufferShareMemory.
Request<void> AskToWrite(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline,
                         std::uint16_t session);

/// Flags of a page; both are false for lists other than the database.
struct PageHead
{
    bool folders = false;
    bool root = false;
};

/// Makes the service store the entries from @p first to @p last in the list's vector. ErrorKind::Refused if the service
/// reports that it did not.
Request<PageHead> AskForPage(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline, ListKind kind,
                             int first, int last);

/// Returns the lock of the list's vector.
Place PlaceOf(ListKind kind);

/// Returns the entries in the list's vector; nothing if it cannot be read.
std::optional<std::vector<std::string>> NamesOf(ListKind kind);
}  // namespace ipodkit
