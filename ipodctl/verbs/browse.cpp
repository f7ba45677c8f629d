// The verb that opens the browser.
#include <gio/gio.h>
#include <ipodkit/session.h>

#include <memory>

#include "browse/browser.h"
#include "browse/message_box.h"
#include "browse/screen.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr char kServiceName[] = "com.zarn.linux.ipod";
constexpr int kAnswerWithin = 10000;

using BusPtr = std::unique_ptr<GDBusConnection, decltype(&g_object_unref)>;

// The program outlives the bus, to give the terminal back and to say what happened.
BusPtr RequireBus()
{
    GError* error = nullptr;
    BusPtr bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error), &g_object_unref);
    if (bus == nullptr)
    {
        const std::string reason = error->message;
        g_error_free(error);
        throw Failure(kNoBus, "no session bus: " + reason + "; set DBUS_SESSION_BUS_ADDRESS to the service's bus");
    }
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
}

bool AskDaemon(GDBusConnection* bus, const char* method, GVariant* arguments, const char* format, void* answer)
{
    GVariant* const reply = g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                        "org.freedesktop.DBus", method, arguments, nullptr,
                                                        G_DBUS_CALL_FLAGS_NONE, kAnswerWithin, nullptr, nullptr);
    if (reply == nullptr) return false;
    g_variant_get(reply, format, answer);
    g_variant_unref(reply);
    return true;
}

// The bus may know how to start it.
void RequireService(GDBusConnection* bus)
{
    gboolean owned = FALSE;
    guint started = 0;
    AskDaemon(bus, "NameHasOwner", g_variant_new("(s)", kServiceName), "(b)", &owned);
    if (owned == TRUE || AskDaemon(bus, "StartServiceByName", g_variant_new("(su)", kServiceName, 0U), "(u)", &started))
        return;
    throw Failure(kNoService, std::string("no iPod service on the bus: nobody owns ") + kServiceName +
                                  "; start the service, or ipod-simulator");
}

Answer Browse()
{
    const browse::MessageBox messages;
    const SuspendSignal suspend;
    const BusPtr bus = RequireBus();
    RequireService(bus.get());
    const auto session = ipodkit::Session::Open();
    if (!session) throw Failure(kNothingDone, session.error().Text());
    browse::Screen screen;
    browse::Browser(**session, screen, suspend).Run();
    return {};
}

Run BuildBrowse(CLI::App&)
{
    return [](Context& context)
    {
        if (context.out.json()) throw Failure(kUsage, "browse is for people; ipodctl ls --json lists a level");
        browse::RequireTerminal();
        return Browse();
    };
}
}  // namespace

std::vector<Verb> BrowserVerbs()
{
    return {{"browse", "Walk through the music database on the whole screen; ? shows the keys",
             "ipodctl browse   # then type zjl: it finds 周杰伦; ? shows all keys", BuildBrowse}};
}
}  // namespace ctl
