#include <ipodsim.h>

#include <cstdio>
#include <exception>
#include <future>
#include <thread>
#include <utility>

#include "actions/scenario.h"
#include "faults/fault_table.h"
#include "playback/clock.h"
#include "running.h"

namespace ipodsim
{
namespace
{
void WriteToStandardError(const std::string& line)
{
    std::fprintf(stderr, "warning: %s\n", line.c_str());
}

// D-Bus strings must be UTF-8: anything else would close the connection.
const std::string& Utf8(const char* what, const std::string& text)
{
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
        throw std::runtime_error(std::string(what) + ": expected UTF-8 text, got '" + text + "'");
    return text;
}

Options WithDefaults(Options options)
{
    if (!options.warn) options.warn = WriteToStandardError;
    if (!(options.speed >= kSlowest && options.speed <= kFastest))
        throw std::runtime_error("speed: expected a number between 0.001 and 10000, got " +
                                 std::to_string(options.speed));
    Utf8("device name", options.deviceName);
    return options;
}

struct ContextUnref
{
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
};
using ContextPtr = std::unique_ptr<GMainContext, ContextUnref>;

// Makes a context the thread-default one during its lifetime.
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
    bool m_stop = false;  // used on the service's thread only
    std::thread m_thread;
};

Value::Value() : m_json("{}") {}

Value::Value(const std::string& text) : m_json(nlohmann::json(Utf8("value", text)).dump()) {}

Value::Value(const char* text) : Value(std::string(text)) {}

Value::Value(bool is) : m_json(is ? "true" : "false") {}

Value::Value(double number) : m_json(nlohmann::json(number).dump()) {}

Value::Value(std::initializer_list<std::pair<const char*, Value>> fields)
{
    for (const auto& [name, value] : fields)
        m_json += (m_json.empty() ? "{" : ",") + Value(name).Json() + ":" + value.Json();
    m_json += m_json.empty() ? "{}" : "}";
}

Value Value::List(const std::vector<Value>& values)
{
    Value list;
    list.m_json.clear();
    for (const Value& value : values) list.m_json += (list.m_json.empty() ? "[" : ",") + value.Json();
    list.m_json += list.m_json.empty() ? "[]" : "]";
    return list;
}

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

std::string Simulator::Do(const std::string& action, const Value& value)
{
    const std::string json = R"({"event":)" + Value(action).Json() + R"(,"value":)" + value.Json() + "}";
    std::string result;
    m_host->Do([&] { result = ipodsim::Do(m_host->TheRunning().TheService(), json).dump(); });
    return result;
}

void Simulator::On(const std::string& method, Handler handler)
{
    RequireMethod(method);
    m_host->Do(
        [&]
        {
            auto& handlers = m_host->TheRunning().TheService().handlers;
            handlers.erase(method);
            if (handler) handlers.emplace(method, std::move(handler));
        });
}

std::vector<Call> Simulator::Calls(const std::string& method) const
{
    if (!method.empty()) RequireMethod(method);
    std::vector<Call> calls;
    m_host->Do(
        [&]
        {
            for (const LoggedCall& call : m_host->TheRunning().TheService().calls.Calls())
                if (method.empty() || call.method == method) calls.push_back(ToCall(call));
        });
    return calls;
}

void Simulator::ClearCalls()
{
    m_host->Do([this] { m_host->TheRunning().TheService().calls.Clear(); });
}

void Simulator::RunScenario(const std::string& json)
{
    m_host->Do([&] { StartScenario(m_host->TheRunning().TheService(), ParseScenario(json)); });
}
}  // namespace ipodsim
