#include <ipodsim.h>

#include <cstdio>
#include <exception>
#include <future>
#include <set>
#include <thread>
#include <utility>

#include "builtin_library.h"
#include "bus.h"
#include "control.h"
#include "events.h"
#include "music_library.h"
#include "requests.h"

namespace ipodsim
{
namespace
{
constexpr char kServicePath[] = "/com/zarn/linux/ipod";

void WriteToStandardError(const std::string& line)
{
    std::fprintf(stderr, "warning: %s\n", line.c_str());
}

Options WithDefaults(Options options)
{
    if (!options.warn) options.warn = WriteToStandardError;
    if (!(options.speed > 0)) throw std::runtime_error("speed: expected a number above 0");
    return options;
}

Library Load(const Options& options)
{
    return options.musicFolder.empty() ? BuiltinLibrary() : ReadFolder(options.musicFolder, options.warn);
}

std::string Counted(std::size_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string Summarise(const Library& library)
{
    std::set<std::string> artists;
    std::set<std::string> albums;
    for (const TrackPtr& track : library.tracks)
    {
        artists.insert(track->artist);
        albums.insert(track->album);
    }
    return Counted(library.tracks.size(), "song") + ", " + Counted(artists.size(), "artist") + ", " +
           Counted(albums.size(), "album");
}

struct ContextUnref
{
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
};
using ContextPtr = std::unique_ptr<GMainContext, ContextUnref>;

// Makes a context the thread's own for as long as it lives.
class ThreadContext
{
public:
    explicit ThreadContext(GMainContext* context) : m_context(context)
    {
        g_main_context_push_thread_default(m_context);
    }
    ~ThreadContext() { g_main_context_pop_thread_default(m_context); }
    ThreadContext(const ThreadContext&) = delete;
    ThreadContext& operator=(const ThreadContext&) = delete;

private:
    GMainContext* m_context;
};

// Everything that lives on the service's thread, taken down in the opposite order.
struct Running
{
    Running(const Options& options, GMainContext* context)
        : service(skeleton.get(), context, {options.speed, options.seed, options.warn, options.logRequest})
    {
        Library library = Load(options);
        summary = Summarise(library);
        service.devices.Attach(options.deviceName, std::move(library));
        AnswerRequests(skeleton.get(), service);
        AnswerControl(control.get(), service);
        bus.Export(G_DBUS_INTERFACE_SKELETON(skeleton.get()), kServicePath);
        bus.Export(G_DBUS_INTERFACE_SKELETON(control.get()), kControlPath);
        bus.Own(kControlName);
        bus.Own(kServiceName);
        bus.OnLost(options.busLost);
    }
    ~Running()
    {
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(skeleton.get()));
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(control.get()));
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    Bus bus;
    ObjectPtr<ComZarnLinuxIpod> skeleton{com_zarn_linux_ipod_skeleton_new()};
    ObjectPtr<ComZarnLinuxIpodSimulator> control{com_zarn_linux_ipod_simulator_skeleton_new()};
    Service service;
    std::string summary;
};
}  // namespace

class Simulator::Host
{
public:
    explicit Host(Options options) : m_context(g_main_context_new())
    {
        std::promise<void> ready;
        m_thread = std::thread([this, options = WithDefaults(std::move(options)), &ready]() { Live(options, ready); });
        try
        {
            ready.get_future().get();
        }
        catch (...)
        {
            m_thread.join();
            throw;
        }
    }

    ~Host()
    {
        Do([this] { m_stop = true; });
        m_thread.join();
    }

    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Runs @p work on the service's thread and waits for it.
    void Do(const std::function<void()>& work)
    {
        std::packaged_task<void()> task(work);
        std::future<void> done = task.get_future();
        g_main_context_invoke(
            m_context.get(),
            [](gpointer data) -> gboolean
            {
                (*static_cast<std::packaged_task<void()>*>(data))();
                return G_SOURCE_REMOVE;
            },
            &task);
        done.get();
    }

    /// The same with an event, whose result is handed back.
    template <class Event, class... Values>
    auto Ask(Event event, const Values&... values)
    {
        std::decay_t<decltype(event(m_running->service, values...))> result{};
        Do([&] { result = event(m_running->service, values...); });
        return result;
    }
    template <class Event, class... Values>
    void Tell(Event event, const Values&... values)
    {
        Do([&] { event(m_running->service, values...); });
    }

    const std::string& Summary() const { return m_running->summary; }

private:
    void Live(const Options& options, std::promise<void>& ready)
    {
        const ThreadContext own(m_context.get());
        try
        {
            m_running = std::make_unique<Running>(options, m_context.get());
        }
        catch (...)
        {
            ready.set_exception(std::current_exception());
            return;
        }
        ready.set_value();
        while (!m_stop) g_main_context_iteration(m_context.get(), TRUE);
        m_running.reset();
    }

    ContextPtr m_context;
    std::unique_ptr<Running> m_running;
    bool m_stop = false;  // only on the service's thread
    std::thread m_thread;
};

Simulator::Simulator(Options options) : m_host(std::make_unique<Host>(std::move(options))) {}

Simulator::~Simulator() = default;

std::string Simulator::Summary() const
{
    return m_host->Summary();
}

void Simulator::PhoneCall(const ipod::iPodPhoneCall& call)
{
    m_host->Tell(events::PhoneCall, call);
}

void Simulator::Battery(const ipod::iPodBattery& battery)
{
    m_host->Tell(events::Battery, battery);
}

void Simulator::Carplay(int status, const std::string& serialNumber)
{
    m_host->Tell(events::Carplay, status, serialNumber);
}

void Simulator::Carlife(int status)
{
    m_host->Tell(events::Carlife, status);
}

void Simulator::WirelessCarPlay(bool available, const std::string& deviceAddress)
{
    m_host->Tell(events::WirelessCarPlay, available, deviceAddress);
}

void Simulator::PairingInfo(const std::string& btAddress, const std::vector<unsigned char>& bytes)
{
    m_host->Tell(events::PairingInfo, btAddress, bytes);
}

void Simulator::Location(int status)
{
    m_host->Tell(events::Location, status);
}

void Simulator::ForegroundApp(const std::string& bundleName)
{
    m_host->Tell(events::ForegroundApp, bundleName);
}

void Simulator::SourceValid(bool valid)
{
    m_host->Tell(events::SourceValid, valid);
}

void Simulator::AttachDevice(const std::string& name)
{
    m_host->Tell(events::AttachDevice, name);
}

bool Simulator::DetachDevice(const std::string& name)
{
    return m_host->Ask(events::DetachDevice, name);
}

std::uint16_t Simulator::OpenEapSession(int protocol)
{
    return m_host->Ask(events::OpenEapSession, protocol);
}

bool Simulator::CloseEapSession(std::uint16_t session)
{
    return m_host->Ask(events::CloseEapSession, session);
}

bool Simulator::SendEapData(std::uint16_t session, const std::vector<unsigned char>& bytes)
{
    return m_host->Ask(events::SendEapData, session, bytes);
}
}  // namespace ipodsim
