#include "running.h"

#include <exception>

#include "faults/falsify.h"
#include "music/music_library.h"
#include "service/requests.h"

namespace ipodsim
{
namespace
{
constexpr char kServicePath[] = "/com/zarn/linux/ipod";
constexpr double kAwayMs = 50;
constexpr double kBackMs = 100;
}  // namespace

Service::Settings Running::SettingsOf(const Options& options)
{
    Service::Settings settings;
    settings.speed = options.speed;
    settings.seed = options.seed;
    settings.warn = options.warn;
    settings.logRequest = options.logRequest;
    if (options.mayCrash) settings.crash = CrashNow;
    settings.restart = [this](unsigned times) { Restart(times); };
    return settings;
}

Running::Running(const Options& options, GMainContext* context)
    : m_options(options), m_bus(std::make_unique<Bus>()), m_service(m_skeleton.get(), context, SettingsOf(options))
{
    AnswerRequests(m_skeleton.get(), m_service);
    AnswerControl(m_control.get(), m_service);
    m_service.scenarioEnded = [this](const std::string& title) { OnScenarioEnd(title); };
    if (options.musicFolder.empty())
        m_service.devices.Attach(options.deviceName, BuiltinLibrary());
    else
        m_feed = std::make_unique<MusicFeed>(m_service, context, options, [this] { m_indexed = true; });
    m_indexed = m_feed == nullptr;
    try
    {
        Appear();
    }
    catch (const std::exception&)
    {
        Disappear();
        throw;
    }
    if (!m_service.segments.Claim())
        m_options.warn(
            "another simulator on another bus uses the same shared memory, and they overwrite each other's pages and "
            "artwork\nhint: stop one or give it a private /dev/shm");
}

Running::~Running()
{
    Disappear();
}

std::string Running::Summary() const
{
    return Summarize(m_service.devices.Everything());
}

void Running::OnScenarioEnd(const std::string& title)
{
    com_zarn_linux_ipod_simulator_emit_scenario_ended(m_control.get(), title.c_str());
    if (m_options.scenarioEnded) m_options.scenarioEnded(title);
}

void Running::Appear()
{
    if (m_bus == nullptr) m_bus = std::make_unique<Bus>();
    FalsifySignals(m_bus->Connection(), m_service.faults);
    m_bus->Export(G_DBUS_INTERFACE_SKELETON(m_skeleton.get()), kServicePath);
    m_bus->Export(G_DBUS_INTERFACE_SKELETON(m_control.get()), kControlPath);
    m_bus->Own(kControlName);
    m_bus->Own(kServiceName);
    m_bus->OnLost(m_options.busLost);
}

void Running::Disappear()
{
    if (m_bus == nullptr) return;
    m_bus->Flush();
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(m_skeleton.get()));
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(m_control.get()));
    m_bus.reset();
}

// A new storm replaces a running one; 0 ends it.
void Running::Restart(unsigned times)
{
    m_restarts = times;
    if (times == 0 || m_storming) return;
    m_storming = true;
    LeaveSoon();
}

// Delayed, because a request in progress still needs its connection.
void Running::LeaveSoon()
{
    m_service.agenda.After(kBackMs,
                           [this]
                           {
                               m_storming = m_restarts != 0;
                               if (!m_storming) return;
                               --m_restarts;
                               Disappear();
                               m_service.Reset();
                               m_service.agenda.After(kAwayMs, [this] { Return(); });
                           });
}

void Running::Return()
{
    try
    {
        Appear();
        LeaveSoon();
    }
    catch (const std::exception& error)
    {
        m_options.warn(std::string("cannot return to the bus: ") + error.what());
        m_bus.reset();
        if (m_options.busLost) m_options.busLost();
    }
}
}  // namespace ipodsim
