/// @file
/// A running service: its state, and its presence on the bus.
#pragma once

#include <ipodsim.h>

#include <functional>
#include <memory>
#include <string>

#include "control/control.h"
#include "music_feed.h"
#include "service/bus.h"
#include "service/service.h"

namespace ipodsim
{
/// Lives on the service's thread.
class Running
{
public:
    /// Returns once the service can be called; scanning continues in the background.
    /// @throws std::runtime_error  like Simulator
    Running(const Options& options, GMainContext* context);
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    /// Whether all music has been scanned once.
    bool Indexed() const { return m_indexed; }
    /// Summary of all devices.
    std::string Summary() const;
    Service& TheService() { return m_service; }

private:
    Service::Settings SettingsOf(const Options& options);
    void OnScenarioEnd(const std::string& title);
    void Appear();
    void Disappear();
    void Restart(unsigned times);
    void LeaveSoon();
    void Return();

    Options m_options;
    ObjectPtr<ComZarnLinuxIpod> m_skeleton{com_zarn_linux_ipod_skeleton_new()};
    ObjectPtr<ComZarnLinuxIpodSimulator> m_control{com_zarn_linux_ipod_simulator_skeleton_new()};
    std::unique_ptr<Bus> m_bus;
    bool m_indexed = false;
    unsigned m_restarts = 0;  // remaining in the current storm
    bool m_storming = false;
    Service m_service;
    std::unique_ptr<MusicFeed> m_feed;
};
}  // namespace ipodsim
