#include <algorithm>

#include "player/list.h"
#include "player/status.h"

namespace ctl
{
namespace
{
// The least with which one page has all entries.
int SizeOfOnePage(int first, int end)
{
    int size = end - first;
    while (first / size != (end - 1) / size) ++size;
    return size;
}

// The list may change while it is read, or the service may go: then the entries are missing this once.
void ReadNear(Session& session, int end, Status& status)
{
    try
    {
        const int size = SizeOfOnePage(status.firstNear, end);
        status.near = List(session, ipodkit::ListKind::Playing, size).Names(status.firstNear, end, nullptr);
    }
    catch (const Failure& failure)
    {
        status.nearRefusal = failure.what();
    }
}
}  // namespace

Status ReadStatus(Session& session, int near)
{
    Status status;
    status.state = session.Ready().State();
    const ipodkit::PlayerState& state = *status.state;
    if (state.position)
    {
        status.position = static_cast<int>(state.position->At(std::chrono::steady_clock::now()).count());
        status.length = static_cast<int>(state.position->duration.count());
    }
    const int playing = state.trackIndex.value_or(-1);
    const int amount = state.queueSize.value_or(0);
    if (near <= 0 || playing < 0 || playing >= amount) return status;
    status.firstNear = std::max(0, playing - near);
    ReadNear(session, std::min(amount, playing + near + 1), status);
    return status;
}
}  // namespace ctl
