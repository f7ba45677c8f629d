// sdbus-c++, with its event loop on a separate thread.
#include <sdbus-c++/sdbus-c++.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "peer.h"
#include "protocol.h"

namespace
{
using namespace peers;

class SdbusPeer : public Peer
{
public:
    SdbusPeer()
    {
        m_player->uponSignal("OnPlayStatusChanged")
            .onInterface(bench::kBusName)
            .call([this](std::uint8_t) { Arrived(); });
        m_player->finishRegistration();
        m_bus->enterEventLoopAsync();
    }
    ~SdbusPeer() override { m_bus->leaveEventLoop(); }

    bool Pause() override
    {
        bool paused = false;
        m_player->callMethod("Pause").onInterface(bench::kBusName).storeResultsTo(paused);
        return paused;
    }

    void RequestEvent() override
    {
        m_player->callMethod("Seek").onInterface(bench::kBusName).withArguments(std::int32_t{0});
    }

    void AwaitEvent() override
    {
        std::unique_lock lock(m_mutex);
        m_arrived.wait(lock, [this] { return m_events > m_seen; });
        ++m_seen;
    }

    std::size_t Names() override
    {
        std::vector<std::string> names;
        m_bulk->callMethod("Names").onInterface(bench::kBenchInterface).storeResultsTo(names);
        return names.size();
    }

    std::size_t Image() override
    {
        sdbus::Variant image;
        m_bulk->callMethod("Bytes").onInterface(bench::kBenchInterface).storeResultsTo(image);
        return image.get<std::vector<std::uint8_t>>().size();
    }

private:
    void Arrived()
    {
        {
            const std::lock_guard lock(m_mutex);
            ++m_events;
        }
        m_arrived.notify_one();
    }

    const std::unique_ptr<sdbus::IConnection> m_bus = sdbus::createSessionBusConnection();
    const std::unique_ptr<sdbus::IProxy> m_player = sdbus::createProxy(*m_bus, bench::kBusName, bench::kObjectPath);
    const std::unique_ptr<sdbus::IProxy> m_bulk = sdbus::createProxy(*m_bus, bench::kBusName, bench::kBenchPath);
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    int m_events = 0;
    int m_seen = 0;
};
}  // namespace

int main(int argc, char** argv)
{
    return RunPeer(argc, argv, [] { return std::make_unique<SdbusPeer>(); });
}
