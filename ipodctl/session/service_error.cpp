#include "session/service_error.h"

namespace ctl
{
namespace
{
using ipodkit::ErrorKind;

ExitCode CodeFor(ErrorKind kind)
{
    switch (kind)
    {
        case ErrorKind::Refused:
        case ErrorKind::Cancelled:
        case ErrorKind::Ambiguous:
            return kNothingDone;
        case ErrorKind::NoSharedMemory:
            return kNoSegments;
        case ErrorKind::BadArgument:
        case ErrorKind::NoStorage:
            return kUsage;
        default:
            return kServiceLost;
    }
}

// In front of the reason.
const char* Summary(ErrorKind kind)
{
    switch (kind)
    {
        case ErrorKind::NoBus:
            return "the session bus closed the connection: ";
        case ErrorKind::NoService:
        case ErrorKind::ServiceLost:
            return "the iPod service went away: ";
        case ErrorKind::TimedOut:
            return "the iPod service did not answer in time: ";
        case ErrorKind::Refused:
            return "the service refused: ";
        case ErrorKind::BadReply:
            return "the iPod service sent a broken answer: ";
        case ErrorKind::Cancelled:
            return "it was changed by somebody else meanwhile, try again: ";
        case ErrorKind::NoSharedMemory:
            return "cannot use the shared memory: ";
        default:
            return "";
    }
}

const char* Advice(ErrorKind kind)
{
    switch (kind)
    {
        case ErrorKind::NoService:
        case ErrorKind::ServiceLost:
            return "; see whether it runs, then try again";
        case ErrorKind::TimedOut:
            return "; see whether it hangs, or wait longer with --deadline";
        case ErrorKind::NoSharedMemory:
            return "; ipodctl doctor tells more";
        default:
            return "";
    }
}
}  // namespace

Failure ToFailure(const ipodkit::Error& error, const char* refusal)
{
    const bool refused = error.kind == ErrorKind::Refused;
    if (refused && error.name.empty() && refusal != nullptr) return {kNothingDone, refusal};
    const std::string name = refused && !error.name.empty() ? "GDBus.Error:" + error.name + ": " : "";
    return {CodeFor(error.kind), Summary(error.kind) + name + error.reason + Advice(error.kind)};
}
}  // namespace ctl
