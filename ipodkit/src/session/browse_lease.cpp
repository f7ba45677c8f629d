#include <ipodkit/sharing.h>

#include "loop/loop_operation.h"
#include "session/session_impl.h"

namespace ipodkit
{
Request<BrowseLease> BrowseLease::Acquire(Session& session, Browsing how)
{
    const std::shared_ptr<Session::Impl>& inside = session.Inside();
    const auto begin = [leases = inside->SharedLeases(), how](const PendingPtr<BrowseLease>& request)
    {
        const auto settle = [request](const auto& held)
        { request->Settle(held.map([](const std::shared_ptr<void>& lock) { return BrowseLease(lock); })); };
        how == Browsing::Changing ? leases->TakeForChanges(settle) : leases->TakeForReads(settle);
    };
    return MakeLoopRequest<BrowseLease>(inside->Bus()->Requests(), "browse lease",
                                        {inside->Options().deadline, std::nullopt}, begin);
}
}  // namespace ipodkit
