#include "accessory/opening.h"

#include <glib.h>

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

void Announce(Session& session, const EAPInfo& info)
{
    CheckLength(info.text1, "the list of protocols");
    CheckLength(info.text2, "the bundle identifier");
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
        LaunchApp(session, request.info.text2);
    }
    const Ending ending = loop.Run(request.seconds);
    session.FlushLog();
    if (ending == Ending::Interrupted) throw Interrupted{};
    if (opened == nullptr) throw Failure(kServiceLost, "no session was opened within the time; see --timeout");
    return opened;
}
}  // namespace ctl
