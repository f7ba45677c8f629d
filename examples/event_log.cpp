// Prints the service's events, for as long as it runs.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <iostream>

using namespace ipodkit;

namespace
{
struct Detail
{
    std::string operator()(const TrackChanged& event) const { return event.track.title; }
    std::string operator()(const RepeatChanged& event) const { return ToString(event.mode); }
    std::string operator()(const AccessoryData& event) const { return std::to_string(event.bytes.size()) + " bytes"; }
    template <class Other>
    std::string operator()(const Other&) const
    {
        return "";
    }
};
}  // namespace

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;

    const auto log = [](const Event& event)
    { std::cout << EventName(event) << ": " << std::visit(Detail(), event) << std::endl; };
    const Subscription logged = (*session)->OnEvent("log", log);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
