// The memory of a session with a pager of 50,000 entries. The service is a separate process.
#include <ipodkit/pager.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "kit/figures/figures.h"
#include "kit/kit_test.h"

namespace test
{
namespace
{
constexpr int kEntries = 50000;

void AnswerPage(SharedVectors& shared, GDBusMethodInvocation* call)
{
    int first = 0;
    int last = 0;
    g_variant_get(g_dbus_method_invocation_get_parameters(call), "(ii)", &first, &last);
    std::vector<std::string> names;
    for (int i = first; i <= last; ++i) names.push_back("A song with a name of common length " + std::to_string(i));
    shared.SetList("VecDBListShareMemory", names);
    g_dbus_method_invocation_return_value(call, g_variant_new("(bbb)", FALSE, FALSE, TRUE));
}

// Forked before any thread starts: waits for the address of the bus, and serves until told to exit. End of file on the
// pipe does not suffice, because other processes inherit it.
class ServiceProcess
{
public:
    ServiceProcess()
    {
        if (pipe(m_toChild) != 0 || pipe(m_toParent) != 0) throw std::runtime_error("pipe");
        m_child = fork();
        if (m_child == 0) Serve();
    }
    ~ServiceProcess()
    {
        (void)!write(m_toChild[1], "", 1);
        waitpid(m_child, nullptr, 0);
    }
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    void StartOn(const std::string& address) const
    {
        char ready = 0;
        ASSERT_EQ(write(m_toChild[1], address.c_str(), address.size()), static_cast<ssize_t>(address.size()));
        ASSERT_EQ(read(m_toParent[0], &ready, 1), 1);
    }

private:
    [[noreturn]] void Serve() const
    {
        char address[1024] = {};
        if (read(m_toChild[0], address, sizeof(address) - 1) <= 0) _exit(1);
        g_setenv("DBUS_SESSION_BUS_ADDRESS", address, TRUE);
        SharedVectors shared;
        FakeService service;
        AnswerState(service);
        service.Answer("GetCurDbListItemsAmount", "(" + std::to_string(kEntries) + ",)");
        service.React("GetCurDbListItems", [&shared](GDBusMethodInvocation* call) { AnswerPage(shared, call); });
        char end = 0;
        if (write(m_toParent[1], &end, 1) == 1 && read(m_toChild[0], &end, 1) >= 0) service.Vanish();
        _exit(0);
    }

    int m_toChild[2] = {};
    int m_toParent[2] = {};
    pid_t m_child = -1;
};

double ResidentMegabytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("RssAnon:", 0) == 0) return std::stod(line.substr(8)) / 1024;
    return 0;
}

double HeapMegabytes()
{
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1 << 20);
}

// Reads the whole list, page by page.
void Walk(Pager& pager, int pageSize)
{
    for (int index = 0; index < kEntries; index += pageSize)
    {
        std::optional<bool> right;
        pager.At(index).Start([&](const Result<PagePtr>& page)
                              { right = page && (*page)->At(index).find(std::to_string(index)) != std::string::npos; });
        ASSERT_TRUE(RunLoopUntil([&] { return right.has_value(); }));
        ASSERT_TRUE(*right);
    }
}

void Measure(const char* heapName, const char* residentName, std::size_t cachedPages)
{
    const ServiceProcess service;
    const PrivateBus bus;
    service.StartOn(g_getenv("DBUS_SESSION_BUS_ADDRESS"));
    const double heap = HeapMegabytes();
    const double resident = ResidentMegabytes();
    const auto session = std::move(*Session::Open());
    ASSERT_TRUE(RunLoopUntil([&] { return session->Connection().phase == Phase::Ready; }));
    PagerOptions options;
    options.cachedPages = cachedPages;
    Pager pager(*session, ListKind::Database, options);
    Walk(pager, options.pageSize);
    Print(heapName, HeapMegabytes() - heap);
    Print(residentName, ResidentMegabytes() - resident);
}

TEST(MemoryFigures, SessionWithPager)
{
    Measure("memory_heap", "memory_resident", PagerOptions{}.cachedPages);
}

TEST(MemoryFigures, SessionWithPagerThatKeepsEverything)
{
    Measure("memory_all_heap", "memory_all_resident", kEntries);
}
}  // namespace
}  // namespace test
