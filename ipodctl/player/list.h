/// @file
/// One of the lists of the service, read in one go.
#pragma once

#include <ipodkit/pager.h>

#include <string>
#include <vector>

#include "session/session.h"

namespace ctl
{
class List
{
public:
    /// @param pageSize  entries that are asked for at once
    List(Session& session, ipodkit::ListKind kind, int pageSize = kPageSize);

    /// Entries of the whole list.
    int Count();

    /// The names from @p first up to but not including @p end, which there must be.
    /// @param refusal  what to say when the service has no page of it
    std::vector<std::string> Names(int first, int end, const char* refusal);

    /// The page that holds an entry.
    ipodkit::PagePtr PageWith(int index, const char* refusal);

    static constexpr int kPageSize = 500;

private:
    Session& m_session;
    ipodkit::Pager m_pager;
};
}  // namespace ctl
