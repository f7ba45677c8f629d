// Accessory sessions: talking to the companion app on the device.
#include <cstring>

#include "command_line.h"
#include "file.h"
#include "follow.h"
#include "loop.h"
#include "registered.h"
#include "text.h"
#include "verbs.h"

namespace ctl
{
namespace
{
constexpr std::size_t kLongestText = 255;
constexpr double kEchoSeconds = 5;
constexpr int kLastSession = 65535;

using Bytes = std::vector<unsigned char>;

void CheckLength(const std::string& text, const char* what)
{
    if (text.size() > kLongestText)
        throw Failure(kUsage, std::string(what) + " is longer than " + std::to_string(kLongestText) + " bytes");
}

void Init(Session& session, const EAPInfo& info)
{
    CheckLength(info.text1, "the list of protocols");
    CheckLength(info.text2, "the bundle identifier");
    session.Ask([&](IQBXIpodPlayer& player) { player.EapInit(info); });
}

void Launch(Session& session, std::string bundle)
{
    if (g_utf8_validate(bundle.data(), static_cast<gssize>(bundle.size()), nullptr) == FALSE)
        throw Failure(kUsage, "a bundle identifier is UTF-8 text, and '" + Printable(bundle) + "' is not");
    if (session.Ask([&](IQBXIpodPlayer& player) { return player.EapLaunchApp(bundle); }) != 1)
        throw Failure(kNothingDone, "the service did not launch '" + Printable(bundle) +
                                        "'; announce its protocols first: ipodctl eap init PROTOCOLS BUNDLE");
}

int TryWrite(Session& session, unsigned short number, Bytes& data)
{
    IQBXIpodPlayer& player = session.Player();
    try
    {
        return session.Ask([&](IQBXIpodPlayer&) { return player.EapWrite(number, data); });
    }
    catch (const Failure&)
    {
        throw;
    }
    catch (const std::exception& error)
    {
        throw Failure(kNoSegments, "cannot put " + Count(static_cast<int>(data.size()), "byte", "bytes") +
                                       " into the shared memory: " + error.what() + "; send less at once");
    }
}

void Write(Session& session, unsigned short number, Bytes data)
{
    if (TryWrite(session, number, data) != 1)
        throw Failure(kNothingDone, "the service did not take the bytes; is session " + std::to_string(number) +
                                        " open? ipodctl eap listen shows sessions");
}

Run BuildInit(CLI::App& app)
{
    const auto info = Argument<EAPInfo>();
    app.add_option("protocols", info->text1, "Accessory protocols, separated by commas")->required();
    app.add_option("bundle", info->text2, "Bundle identifier of the companion app")->required();
    return [info](Context& context) -> Answer
    {
        Init(context.session, *info);
        return {{{"verb", "eap init"}, {"protocols", info->text1}, {"bundle", info->text2}},
                "announced " + Printable(info->text1)};
    };
}

Run BuildLaunch(CLI::App& app)
{
    const auto bundle = Argument<std::string>();
    app.add_option("bundle", *bundle, "Bundle identifier of the app to start")->required();
    return [bundle](Context& context) -> Answer
    {
        Launch(context.session, *bundle);
        return {{{"verb", "eap launch"}, {"bundle", *bundle}}, "launch of " + Printable(*bundle) + " requested"};
    };
}

struct Writing
{
    unsigned short session = 0;
    std::string file = "-";
};

Run BuildWrite(CLI::App& app)
{
    const auto writing = Argument<Writing>();
    app.add_option("session", writing->session, "Number of the session, as eap-start told it")
        ->required()
        ->check(CLI::Range(0, kLastSession));
    app.add_option("file", writing->file, "File to send, - for standard input");
    return [writing](Context& context) -> Answer
    {
        const Bytes data = ReadFile(writing->file);
        Write(context.session, writing->session, data);
        return {{{"verb", "eap write"}, {"session", writing->session}, {"bytes", data.size()}},
                Count(static_cast<int>(data.size()), "byte", "bytes") + " sent to session " +
                    std::to_string(writing->session)};
    };
}

bool IsEap(const Event& event)
{
    return std::strncmp(event.name, "eap-", 4) == 0;
}

Run BuildListen(CLI::App& app)
{
    const auto limits = Argument<Limits>();
    AddLimits(app, *limits);
    return [limits](Context& context) { return Follow(context, *limits, IsEap); };
}

struct EchoRequest
{
    std::string text;
    EAPInfo info{"com.example.echo", "com.example.echo"};
    double seconds = kEchoSeconds;
};

// Notes the session that is opened, and what arrives on it.
class EchoListener : public IQBXIpodPlayerListener
{
public:
    explicit EchoListener(Loop& loop) : m_loop(loop) {}

    void OnIpodStartEapSession(unsigned char, unsigned short number) override
    {
        if (!session) session = number;
        m_loop.Finish();
    }

    // Data is announced with the low byte of the session's number only.
    void OnIpodReceiveEapData(unsigned short number, Bytes& data) override
    {
        if (!session || (*session & 0xFF) != number) return;
        received.insert(received.end(), data.begin(), data.end());
        m_loop.Finish();
    }

    std::optional<unsigned short> session;
    Bytes received;

private:
    Loop& m_loop;
};

// Runs the loop until the condition holds; each event that may bring it about ends one round.
template <class Condition>
void WaitFor(Loop& loop, double seconds, const char* what, Condition holds)
{
    while (!holds())
    {
        const Ending ending = loop.Run(seconds);
        if (ending == Ending::TimedOut)
            throw Failure(kServiceLost, std::string(what) + " within the time; see --timeout");
        if (ending == Ending::Interrupted) throw Failure(kNothingDone, "interrupted");
    }
}

Answer Echo(Context& context, const EchoRequest& request)
{
    Session& session = context.session;
    IQBXIpodPlayer& player = session.Player();
    Loop loop(session);
    EchoListener listener(loop);
    const Registered registered(player, listener);
    Init(session, request.info);
    Launch(session, request.info.text2);
    WaitFor(loop, request.seconds, "no session was opened", [&] { return listener.session.has_value(); });
    Write(session, *listener.session, Bytes(request.text.begin(), request.text.end()));
    WaitFor(loop, request.seconds, "no echo came", [&] { return listener.received.size() >= request.text.size(); });
    const std::string echo(listener.received.begin(), listener.received.end());
    if (echo != request.text) throw Failure(kNothingDone, "what came back differs from what was sent: " + echo);
    return {{{"verb", "eap echo"}, {"session", *listener.session}, {"sent", request.text}, {"received", echo}},
            Printable(echo)};
}

Run BuildEcho(CLI::App& app)
{
    const auto request = Argument<EchoRequest>();
    app.add_option("text", request->text, "Text to send")->required();
    app.add_option("--protocols", request->info.text1, "Protocols to announce")->capture_default_str();
    app.add_option("--bundle", request->info.text2, "App to launch")->capture_default_str();
    app.add_option("--timeout", request->seconds, "Seconds to wait for the session, and for the echo")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    return [request](Context& context) { return Echo(context, *request); };
}

std::vector<Verb> Subverbs()
{
    return {{"init", "Announce the accessory protocols of the unit",
             "ipodctl eap init com.example.echo com.example.app", BuildInit},
            {"launch", "Ask the device to start an app", "ipodctl eap launch com.example.app", BuildLaunch},
            {"write", "Send a file or standard input on a session", "echo hello | ipodctl eap write 1 -", BuildWrite},
            {"listen", "Follow sessions and what arrives on them", "ipodctl eap listen --timeout 60", BuildListen},
            {"echo", "Open a session, send a text, print what comes back", "ipodctl eap echo hello", BuildEcho}};
}

Run BuildEap(CLI::App& app)
{
    return AddVerbs(app, Subverbs());
}
}  // namespace

std::vector<Verb> EapVerbs()
{
    return {{"eap", "Accessory sessions: init, launch, write, listen, echo",
             "ipodctl eap echo hello\nipodctl eap init com.example.echo com.example.app\nipodctl eap listen",
             BuildEap}};
}
}  // namespace ctl
