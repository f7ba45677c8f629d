// Exchanges data with the companion app on the device over accessory sessions.
#include <cstdint>
#include <cstring>

#include "accessory/bridge.h"
#include "events/follow.h"
#include "output/output.h"
#include "output/text.h"
#include "session/loop.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr int kLastSession = 65535;

using Bytes = ipodkit::Bytes;

// Disables chunking: the app on the device may rely on message boundaries.
ipodkit::AccessoryOptions InOnePiece()
{
    ipodkit::AccessoryOptions options;
    options.chunk = SIZE_MAX;
    return options;
}

void Write(Session& session, unsigned short number, Bytes data)
{
    const SenderLock lock(session);
    ipodkit::AccessoryPort port(session.Ready(), InOnePiece());
    ipodkit::Result<void> sent = session.Await(port.WriteTo(number, std::move(data)));
    if (!sent && sent.error().kind == ipodkit::ErrorKind::Refused && sent.error().name.empty())
        throw Failure(kNothingDone,
                      "the service rejected the data: session " + std::to_string(number) +
                          " is not open, or the shared memory has no room for an answer",
                      "'ipodctl eap listen' prints sessions, 'ipodctl shm' the free memory");
    session.ValueOf(std::move(sent));
}

Run BuildInit(CLI::App& app)
{
    const auto info = Argument<ipodkit::AccessoryInfo>();
    app.add_option("protocols", info->protocols, "Accessory protocols, separated by commas")
        ->required()
        ->check(cli::NonEmpty());
    app.add_option("bundle", info->bundleId, "Bundle identifier of the companion app")
        ->required()
        ->check(cli::NonEmpty());
    return [info](Context& context) -> Answer
    {
        Announce(context.session, *info);
        return {{{"verb", "eap init"}, {"protocols", info->protocols}, {"bundle", info->bundleId}},
                "announced " + Printable(info->protocols)};
    };
}

Run BuildLaunch(CLI::App& app)
{
    const auto bundle = Argument<std::string>();
    app.add_option("bundle", *bundle, "Bundle identifier of the app to start")->required()->check(cli::NonEmpty());
    return [bundle](Context& context) -> Answer
    {
        LaunchApp(context.session, *bundle);
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
    app.add_option("session", writing->session, "Number of the session, as in the event eap-start")
        ->required()
        ->transform(cli::NumberUpTo(kLastSession));
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
    AddLimits(app, *limits, "--count");
    return [limits](Context& context)
    {
        Following following;
        following.limits = *limits;
        following.wanted = IsEap;
        return Follow(context, following);
    };
}

void AddAccessory(CLI::App& app, AccessoryRequest& request, const char* timeout)
{
    app.add_option("--protocols", request.info.protocols, "Protocols to announce, separated by commas")
        ->type_name("PROTOCOLS")
        ->capture_default_str();
    app.add_option("--bundle", request.info.bundleId, "Bundle identifier of the app to launch")
        ->type_name("BUNDLE")
        ->capture_default_str();
    app.add_option("--timeout", request.seconds, timeout)->capture_default_str()->check(Seconds());
}

struct EchoRequest
{
    std::string text;
    AccessoryRequest accessory;
};

// Sends the text and returns the reply, which has at least as many bytes. The reply may arrive before the service
// answers the write.
Bytes Exchange(Session& session, Loop& loop, ipodkit::AccessorySession& peer, const EchoRequest& request)
{
    Bytes received;
    bool answered = false;
    const auto record = [&](const Bytes& bytes, bool isAnswer)
    {
        received.insert(received.end(), bytes.begin(), bytes.end());
        answered = answered || isAnswer;
        if (answered && received.size() >= request.text.size()) loop.Finish();
    };
    const auto receive = [&](const ipodkit::Result<Bytes>& data)
    { loop.Guard([&] { record(session.ValueOf(data), false); }); };
    const auto answer = [&](const ipodkit::Result<void>& result)
    { loop.Guard([&] { session.ValueOf(result), record({}, true); }); };
    const ipodkit::Subscription receiving = peer.OnData("ipodctl", receive);
    peer.Write(Bytes(request.text.begin(), request.text.end())).Start(answer);
    const Ending ending = loop.Run(request.accessory.seconds);
    if (ending == Ending::Interrupted) throw Interrupted{};
    if (ending == Ending::TimedOut)
        throw Failure(kServiceLost, "no echo arrived in time", "wait longer with --timeout");
    return received;
}

Answer Echo(Context& context, const EchoRequest& request)
{
    Session& session = context.session;
    const SenderLock lock(session);
    Loop loop;
    ipodkit::AccessoryPort port(session.Ready());
    const ipodkit::AccessorySessionPtr peer = OpenAccessory(session, loop, port, request.accessory);
    const Bytes received = Exchange(session, loop, *peer, request);
    const std::string echo(received.begin(), received.end());
    if (echo != request.text) throw Failure(kNothingDone, "the echo differs from the text sent: " + echo);
    return {{{"verb", "eap echo"}, {"session", peer->Number()}, {"sent", request.text}, {"received", echo}},
            Printable(echo)};
}

Run BuildEcho(CLI::App& app)
{
    const auto request = Argument<EchoRequest>();
    app.add_option("text", request->text, "Text to send")->required();
    AddAccessory(app, request->accessory, "Time to wait for the session and for the echo");
    return [request](Context& context) { return Echo(context, *request); };
}

Run BuildBridge(CLI::App& app)
{
    const auto request = Argument<BridgeRequest>();
    AddAccessory(app, request->accessory, "Time to wait for the session");
    app.add_flag_callback(
        "--no-launch", [request] { request->accessory.launch = false; },
        "Do not announce or launch: the device opens the session by itself");
    app.add_option("--socket", request->socket,
                   "Serve a UNIX socket at this path, one client at a time, instead of standard input and output")
        ->type_name("FILE")
        ->check(cli::NonEmpty());
    app.add_option("--linger", request->linger, "Exit after this much silence once the input has ended")
        ->capture_default_str()
        ->check(Seconds());
    return [request](Context& context) { return RunBridge(context, *request); };
}

std::vector<Verb> Subverbs()
{
    return {{"init", "Announce the accessory protocols of the head unit",
             "ipodctl eap init com.example.echo com.example.app", BuildInit},
            {"launch", "Ask the device to start an app", "ipodctl eap launch com.example.app", BuildLaunch},
            {"write", "Send a file or standard input on a session", "echo hello | ipodctl eap write 1 -", BuildWrite},
            {"listen", "Print sessions and the data they receive", "ipodctl eap listen --timeout 60", BuildListen},
            {"echo", "Open a session, send text, print the reply", "ipodctl eap echo hello", BuildEcho},
            {"bridge", "Connect a session with standard input/output or a socket",
             "ipodctl eap bridge < request.bin > reply.bin\n"
             "ipodctl eap bridge --socket /tmp/echo.sock --bundle com.example.app",
             BuildBridge}};
}

Run BuildEap(CLI::App& app)
{
    return AddVerbs(app, Subverbs());
}
}  // namespace

std::vector<Verb> EapVerbs()
{
    return {{"eap", "Open and use accessory sessions",
             "ipodctl eap echo hello\nipodctl eap init com.example.echo com.example.app\nipodctl eap listen",
             BuildEap}};
}
}  // namespace ctl
