/// @file
/// A service for your own test: the simulated iPod service on the bus of DBUS_SESSION_BUS_ADDRESS, for as long as
/// the object lives.
///
///     ipodsim::Simulator service;                     // the built-in library
///     IQBXIpodPlayer* player = QBX_GetIpodPlayer();
///     player->InitInstance();
///     service.Do("call", {{"status", "ringing"}, {"display-name", "Li Lei"}});  // the listeners are notified
///
/// The service runs on a thread and a connection of its own, so that the player's blocking commands may be called
/// from the same process. It attaches the two shared-memory segments, whose names are global to a machine: at most
/// one service should run in one mount namespace.
///
/// All members may be called from any thread; each blocks until the service has done what was asked and emitted its
/// signal. Nothing throws but where it is stated.
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
    /// Its sub-folders are devices; empty: one device with the built-in library.
    std::string musicFolder;
    /// Of the device with the built-in library, or the folder's own files: UTF-8.
    std::string deviceName = "Desk iPod";
    bool oneDevice = false;    ///< everything below the music folder belongs to that device
    std::string cacheFolder;   ///< where what is read of files is kept; empty: nowhere
    bool waitForIndex = true;  ///< the constructor returns when all music has been read once

    double speed = 1;       ///< factor of the clock, between 0.001 and 10000
    unsigned seed = 1;      ///< of shuffled orders; the same seed gives the same orders
    bool mayCrash = false;  ///< the faults "crash" and "crash-locked" end this process; otherwise they are refused

    /// Receives a line about each of the first ten files or pictures that a reading leaves out, and one with the number
    /// of the others. Empty: written to standard error. Called on the service's threads.
    std::function<void(const std::string&)> warn;
    /// Receives a line for each request and its answer. Empty: requests are not logged. Called on the service's thread.
    std::function<void(const std::string&)> logRequest;
    /// Receives how many files of how many have been read, now and then. Called on the service's threads.
    std::function<void(std::size_t done, std::size_t all)> progress;
    /// Receives the title of a scenario after its last step. Called on the service's thread.
    std::function<void(const std::string&)> scenarioEnded;
    /// Called on the service's thread when the bus disconnects, or when another process has taken one of the names
    /// during a restart storm; nothing reaches the service from then on.
    std::function<void()> busLost;
};

/// What the service was asked, and what it answered. Values are in GLib's text form, for example "(true, 3)".
struct Call
{
    std::int64_t time = 0;  ///< when it came, microseconds since 1970-01-01 UTC
    std::string sender;     ///< unique bus name of the caller
    std::string method;     ///< for example "GetPlayStatus"
    std::string arguments;  ///< a tuple
    std::string error;      ///< name of the error that was answered; empty when none was
    std::string answer;     ///< a tuple; with an error its message; empty when nothing was answered
};

/// A value of an action: a text, a number, a boolean, or fields by name.
class Value
{
public:
    Value();  ///< no fields
    /// @throws std::runtime_error  it is not UTF-8
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
    /// Returns when the service can be called.
    ///
    /// @throws std::runtime_error  no session bus; one of its names has an owner already; an option, the music folder
    ///         or shared memory cannot be used. The message is one line for people.
    explicit Simulator(Options options = {});
    /// Gives the names back. The segments stay.
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// For example "24 songs, 9 artists, 9 albums": what all devices hold now.
    std::string Summary() const;
    /// Whether all music has been read once.
    bool Indexed() const;

    /// Does an action at once; returns when its signal has been emitted. The actions and their fields are those of
    /// scenarios: `ipodctl sim --help` and docs/simulator.md list them.
    ///
    ///     service.Do("battery", {{"level", 4}});
    ///     service.Do("button", "next");                            // the value of the first field may stand alone
    ///     service.Do("fault", "delay=500@GetPlayStatus/3");
    ///     service.Do("call", {{"sequence", Value::List({Value{{"status", "ringing"}, {"seconds", 3}}})}});
    ///
    /// @return  a JSON object: of "eap-open" `{"session":1}`, of the others `{}`
    /// @throws std::runtime_error  there is no such action, a field is not valid, or the action is not possible now;
    /// the
    ///         message gives the path of the value, and what was expected
    std::string Do(const std::string& action, const Value& value = {});

    /// Starts a scenario.
    /// @throws std::runtime_error  it is malformed; the message says where, and what was expected
    void RunScenario(const std::string& json);

    /// Lets @p handler answer a method in place of the simulator, whose state the calls then do not change; an empty
    /// one ends that. The log of calls has them, and no fault applies to them.
    ///
    ///     service.On("Next", [](GVariant*) { return ipodsim::Reply::Malformed("('text',)"); });
    ///
    /// @throws std::runtime_error  the interface has no such method; the message names the nearest one
    void On(const std::string& method, Handler handler);

    /// @name What it was asked
    /// @{

    /// The last ten thousand calls of a method, or of all, the oldest first; fewer if they hold more than 32 MiB.
    /// @throws std::runtime_error  the interface has no such method; the message names the nearest one
    std::vector<Call> Calls(const std::string& method = {}) const;
    void ClearCalls();
    /// @}

private:
    class Host;
    std::unique_ptr<Host> m_host;
};
}  // namespace ipodsim
