/// @file
/// A service for your own tests: runs the simulated iPod service on the bus of DBUS_SESSION_BUS_ADDRESS for as long as
/// the object exists.
///
///     ipodsim::Simulator service;                     // the built-in library
///     IQBXIpodPlayer* player = QBX_GetIpodPlayer();
///     player->InitInstance();
///     service.Do("call", {{"status", "ringing"}, {"display-name", "Li Lei"}});  // the listeners are notified
///
/// The service has its own thread and bus connection, so the player's blocking commands may be called from the same
/// process. It attaches the two shared-memory segments, whose names are global to a machine: run at most one service
/// per mount namespace.
///
/// All members may be called from any thread; each blocks until the service has carried out the request and emitted its
/// signal. Only functions that document it throw.
#pragma once

#include <ipodsim_script.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace ipodsim
{
/// Bus name that the service owns.
constexpr char kServiceName[] = "com.zarn.linux.ipod";

struct Options
{
    /// Each subfolder becomes a device; if empty, one device with the built-in library.
    std::string musicFolder;
    /// UTF-8 name of the device with the built-in library, or with the files directly in the folder.
    std::string deviceName = "Desk iPod";
    bool oneDevice = false;    ///< put everything below the music folder on that device
    std::string cacheFolder;   ///< where the index of scanned files is stored; empty for none
    bool waitForIndex = true;  ///< construct only after all music has been scanned once

    double speed = 1;       ///< speed of the clock relative to real time, between 0.001 and 10000
    unsigned seed = 1;      ///< seed for shuffling; the same seed gives the same order
    bool mayCrash = false;  ///< allow the faults "crash" and "crash-locked", which end this process

    /// Receives a line for each of the first ten files or images that a scan skips, and one with the number of the
    /// others. If empty, they go to standard error. Called on the service's threads.
    std::function<void(const std::string&)> warn;
    /// Receives a line for each request and its reply. If empty, requests are not logged. Called on the service's
    /// thread.
    std::function<void(const std::string&)> logRequest;
    /// Receives the number of files scanned and the total, periodically. Called on the service's threads.
    std::function<void(std::size_t done, std::size_t all)> progress;
    /// Receives the title of a scenario after its last step. Called on the service's thread.
    std::function<void(const std::string&)> scenarioEnded;
    /// Called on the service's thread when the bus disconnects, or when another process acquires one of the names
    /// during a restart storm. The service is unreachable from then on.
    std::function<void()> busLost;
};

/// A request that the service received, and its reply. Values are in GVariant text format, for example "(true, 3)".
struct Call
{
    std::int64_t time = 0;  ///< time of arrival, in microseconds since 1970-01-01 UTC
    std::string sender;     ///< unique bus name of the caller
    std::string method;     ///< for example "GetPlayStatus"
    std::string arguments;  ///< a tuple
    std::string error;      ///< name of the error reply; empty if there was none
    std::string answer;     ///< a tuple, or the error's message; empty without a reply
};

/// A value of an action: a string, a number, a boolean, or named fields.
class Value
{
public:
    Value();  ///< no fields
    /// @throws std::runtime_error  @p text is not UTF-8
    Value(const char* text);
    Value(const std::string& text);
    Value(bool is);
    Value(double number);
    template <class Number, class = std::enable_if_t<std::is_integral_v<Number>>>
    Value(Number number) : m_json(std::to_string(number))
    {
    }
    Value(std::initializer_list<std::pair<const char*, Value>> fields);
    static Value List(const std::vector<Value>& values);

    /// Returns the value as JSON.
    const std::string& Json() const { return m_json; }

private:
    std::string m_json;
};

class Simulator
{
public:
    /// Starts the service; returns once it can be called.
    ///
    /// @throws std::runtime_error  there is no session bus, one of its names already has an owner, or an option, the
    ///                             music folder, or shared memory cannot be used. The message is one readable line.
    explicit Simulator(Options options = {});
    /// Releases the names. The segments remain.
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// For example "24 songs, 9 artists, 9 albums": the current contents of all devices.
    std::string Summary() const;
    /// Whether all music has been scanned once.
    bool Indexed() const;

    /// Runs an action at once; returns when its signal has been emitted. The actions and their fields are those of
    /// scenarios: `ipodctl sim --help` and docs/simulator.md list them.
    ///
    ///     service.Do("battery", {{"level", 4}});
    ///     service.Do("button", "next");  // a plain value sets the first field
    ///     service.Do("fault", "delay=500@GetPlayStatus/3");
    ///     service.Do("call", {{"sequence", Value::List({Value{{"status", "ringing"}, {"seconds", 3}}})}});
    ///
    /// @return  a JSON object: `{"session":1}` for "eap-open", `{}` for the others
    /// @throws std::runtime_error  the action does not exist, a field is invalid, or the action is not possible now;
    ///                             the message gives the path of the value and the expectation
    std::string Do(const std::string& action, const Value& value = {});

    /// Starts a scenario.
    /// @throws std::runtime_error  the scenario is malformed; the message gives the position and the expectation
    void RunScenario(const std::string& json);

    /// Makes @p handler answer a method in place of the simulator; the calls then leave the simulator's state
    /// unchanged. An empty handler restores the simulator's own. The calls are logged; faults do not apply to them.
    ///
    ///     service.On("Next", [](GVariant*) { return ipodsim::Reply::Malformed("('text',)"); });
    ///
    /// @throws std::runtime_error  the interface has no such method; the message names the nearest one
    void On(const std::string& method, Handler handler);

    /// @name Call log
    /// @{

    /// Returns the last 10,000 calls to a method, or to all methods, oldest first; fewer if they exceed 32 MiB.
    /// @throws std::runtime_error  the interface has no such method; the message names the nearest one
    std::vector<Call> Calls(const std::string& method = {}) const;
    void ClearCalls();
    /// @}

private:
    class Host;
    std::unique_ptr<Host> m_host;
};
}  // namespace ipodsim
