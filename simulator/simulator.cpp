#include <ipodsim.h>

#include <cstdio>
#include <exception>
#include <future>
#include <thread>
#include <utility>

#include "faults/fault_table.h"
#include "playback/clock.h"
#include "printable.h"
#include "running.h"
#include "scenario/scenario.h"
#include "service/events.h"

namespace ipodsim
{
namespace
{
void WriteToStandardError(const std::string& line)
{
    std::fprintf(stderr, "warning: %s\n", line.c_str());
}

// The bus carries no other text: it would end the connection.
const std::string& Utf8(const char* what, const std::string& text)
{
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
        throw std::runtime_error(std::string(what) + ": expected UTF-8 text, not '" + Printable(text) + "'");
    return text;
}

Options WithDefaults(Options options)
{
    if (!options.warn) options.warn = WriteToStandardError;
    if (!(options.speed >= kSlowest && options.speed <= kFastest))
        throw std::runtime_error("speed: expected a number between 0.001 and 10000");
    Utf8("name of the device", options.deviceName);
    return options;
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

Call ToCall(const LoggedCall& logged)
{
    Call call{logged.time, logged.sender, logged.method, ToText(logged.arguments.get()), logged.error, {}};
    if (logged.answer != nullptr) call.answer = ToText(logged.answer.get());
    if (!call.error.empty()) call.answer = g_variant_get_string(logged.answer.get(), nullptr);
    return call;
}
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
        std::decay_t<decltype(event(m_running->TheService(), values...))> result{};
        Do([&] { result = event(m_running->TheService(), values...); });
        return result;
    }
    template <class Event, class... Values>
    void Tell(Event event, const Values&... values)
    {
        Do([&] { event(m_running->TheService(), values...); });
    }

    Running& TheRunning() const { return *m_running; }

private:
    void Live(const Options& options, std::promise<void>& ready)
    {
        const ThreadContext own(m_context.get());
        try
        {
            m_running = std::make_unique<Running>(options, m_context.get());
            while (options.waitForIndex && !m_running->Indexed()) g_main_context_iteration(m_context.get(), TRUE);
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
    std::string summary;
    m_host->Do([&] { summary = m_host->TheRunning().Summary(); });
    return summary;
}

bool Simulator::Indexed() const
{
    bool indexed = false;
    m_host->Do([&] { indexed = m_host->TheRunning().Indexed(); });
    return indexed;
}

void Simulator::PhoneCall(const ipod::iPodPhoneCall& call)
{
    m_host->Tell(events::PhoneCall, call);
}

void Simulator::CallSequence(const ipod::iPodPhoneCall& call, const std::vector<CallStep>& steps)
{
    m_host->Tell(events::CallSequence, call, steps);
}

void Simulator::Battery(const ipod::iPodBattery& battery)
{
    m_host->Tell(events::Battery, battery);
}

void Simulator::Carplay(int status, const std::string& serialNumber)
{
    m_host->Tell(events::Carplay, status, Utf8("serial number", serialNumber));
}

void Simulator::Carlife(int status)
{
    m_host->Tell(events::Carlife, status);
}

void Simulator::WirelessCarPlay(bool available, const std::string& deviceAddress)
{
    m_host->Tell(events::WirelessCarPlay, available, Utf8("address of the device", deviceAddress));
}

void Simulator::PairingInfo(const std::string& btAddress, const std::vector<unsigned char>& bytes)
{
    m_host->Tell(events::PairingInfo, Utf8("address of the device", btAddress), bytes);
}

void Simulator::Location(int status)
{
    m_host->Tell(events::Location, status);
}

void Simulator::ForegroundApp(const std::string& bundleName)
{
    m_host->Tell(events::ForegroundApp, Utf8("name of the app", bundleName));
}

void Simulator::SourceValid(bool valid)
{
    m_host->Tell(events::SourceValid, valid);
}

bool Simulator::PressButton(const std::string& button)
{
    return m_host->Ask(events::PressButton, button);
}

bool Simulator::AttachDevice(const std::string& name)
{
    return m_host->Ask(events::AttachDevice, Utf8("name of the device", name));
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

std::vector<Call> Simulator::Calls(const std::string& method) const
{
    if (!method.empty()) RequireMethod(method);
    std::vector<Call> calls;
    m_host->Tell(
        [&](const Service& service)
        {
            for (const LoggedCall& call : service.calls.Calls())
                if (method.empty() || call.method == method) calls.push_back(ToCall(call));
        });
    return calls;
}

void Simulator::ClearCalls()
{
    m_host->Tell([](Service& service) { service.calls.Clear(); });
}

void Simulator::Fault(const std::string& fault)
{
    m_host->Tell(events::AddFault, ParseFault(fault));
}

void Simulator::ClearFaults()
{
    m_host->Tell(events::ClearFaults);
}

void Simulator::RunScenario(const std::string& json)
{
    m_host->Tell(StartScenario, ParseScenario(json));
}
}  // namespace ipodsim
