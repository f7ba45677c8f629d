#include "output/failure.h"

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
        case ErrorKind::Busy:
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

// Returns the prefix for the error's reason.
const char* Summary(ErrorKind kind)
{
    switch (kind)
    {
        case ErrorKind::NoBus:
            return "the session bus closed the connection: ";
        case ErrorKind::NoService:
        case ErrorKind::ServiceLost:
            return "the iPod service disappeared: ";
        case ErrorKind::TimedOut:
            return "the iPod service did not answer in time: ";
        case ErrorKind::Refused:
            return "the service refused: ";
        case ErrorKind::BadReply:
            return "the iPod service sent an invalid answer: ";
        case ErrorKind::Cancelled:
            return "another program changed it in the meantime: ";
        case ErrorKind::Busy:
            return "the lists are in use: ";
        case ErrorKind::NoSharedMemory:
            return "cannot use the shared memory: ";
        default:
            return "";
    }
}

const char* Hint(ErrorKind kind)
{
    switch (kind)
    {
        case ErrorKind::NoService:
        case ErrorKind::ServiceLost:
            return kHintForLost;
        case ErrorKind::TimedOut:
            return "check whether the service hangs, or wait longer with --deadline";
        case ErrorKind::Cancelled:
            return "try again";
        case ErrorKind::Busy:
            return "end that program, or try again later; 'ipodctl doctor' lists the lock holders";
        case ErrorKind::NoSharedMemory:
            return "run 'ipodctl doctor' for a diagnosis";
        default:
            return "";
    }
}
}  // namespace

Failure ToFailure(const ipodkit::Error& error, const Refusal& refusal)
{
    const bool refused = error.kind == ErrorKind::Refused;
    if (refused && error.name.empty() && !refusal.message.empty()) return {kNothingDone, refusal.message, refusal.hint};
    const std::string name = refused && !error.name.empty() ? "GDBus.Error:" + error.name + ": " : "";
    return {CodeFor(error.kind), Summary(error.kind) + name + error.reason, Hint(error.kind)};
}
}  // namespace ctl
