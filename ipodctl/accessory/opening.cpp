#include "accessory/opening.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
constexpr std::size_t kLongestText = 255;

void CheckLength(const std::string& text, const char* what)
{
    if (text.size() > kLongestText)
        throw Failure(kUsage, std::string(what) + " is longer than " + std::to_string(kLongestText) + " bytes");
}
}  // namespace

// On the shared memory itself: whoever shares the buffer shares the lock, which ends with its process. A segment that
// cannot be opened is reported by what uses it.
SenderLock::SenderLock(Session& session)
    : m_file((session.Ready(), shm_open("/BufferVectorSharedMemory", O_RDONLY | O_CLOEXEC, 0)))
{
    if (m_file < 0 || flock(m_file, LOCK_EX | LOCK_NB) == 0) return;
    close(m_file);
    throw Failure(kNoSegments, "cannot send: another ipodctl uses the accessory buffers",
                  "wait until its 'eap bridge', 'eap echo' or 'eap write' has ended");
}

SenderLock::~SenderLock()
{
    if (m_file >= 0) close(m_file);
}

void Announce(Session& session, const ipodkit::AccessoryInfo& info)
{
    CheckLength(info.protocols, "the list of protocols");
    CheckLength(info.bundleId, "the bundle identifier");
    session.Ask(session.Commands().AnnounceAccessory(info));
}

void LaunchApp(Session& session, const std::string& bundle)
{
    if (g_utf8_validate(bundle.data(), static_cast<gssize>(bundle.size()), nullptr) == FALSE)
        throw Failure(kUsage, "a bundle identifier is UTF-8 text, and '" + Printable(bundle) + "' is not");
    const std::string refusal = "the service did not launch '" + Printable(bundle) +
                                "'; announce its protocols first: ipodctl eap init PROTOCOLS BUNDLE";
    session.Ask(session.Commands().LaunchApp(bundle), refusal.c_str());
}

ipodkit::AccessorySessionPtr OpenAccessory(Session& session, Loop& loop, ipodkit::AccessoryPort& port,
                                           const AccessoryRequest& request)
{
    ipodkit::AccessorySessionPtr opened;
    const ipodkit::Subscription opening = port.OnOpened("ipodctl",
                                                        [&](const ipodkit::AccessorySessionPtr& peer)
                                                        {
                                                            if (opened == nullptr) opened = peer;
                                                            loop.Finish();
                                                        });
    if (request.launch)
    {
        Announce(session, request.info);
        LaunchApp(session, request.info.bundleId);
    }
    const Ending ending = loop.Run(request.seconds);
    if (ending == Ending::Interrupted) throw Interrupted{};
    if (opened == nullptr) throw Failure(kServiceLost, "no session was opened within the time; see --timeout");
    return opened;
}
}  // namespace ctl
