// Accessory sessions, from the device's end.
#include <cstdint>

#include "output/file.h"
#include "verbs/sim.h"

namespace ctl
{
namespace
{
constexpr int kLastSession = 65535;

CLI::Option* AddSession(CLI::App& app, std::uint16_t& session)
{
    return app.add_option("session", session, "Number of the session")->required()->check(NumberUpTo(kLastSession, 1));
}

Run BuildOpen(CLI::App& app)
{
    const auto protocol = Argument<unsigned>();
    app.add_option("--protocol", *protocol, "Index of the protocol")->check(NumberUpTo(255));
    return [protocol](Context& context) -> Answer
    {
        const VariantPtr reply =
            AskSimulator(context.session, "OpenEapSession", g_variant_new("(y)", static_cast<guchar>(*protocol)));
        guint16 session = 0;
        g_variant_get(reply.get(), "(q)", &session);
        return {{{"verb", "sim eap-open"}, {"session", session}}, "session " + std::to_string(session)};
    };
}

Run BuildClose(CLI::App& app)
{
    const auto session = Argument<std::uint16_t>();
    AddSession(app, *session);
    return [session](Context& context)
    {
        AskSimulator(context.session, "CloseEapSession", g_variant_new("(q)", *session));
        return Asked("eap-close");
    };
}

struct Data
{
    std::uint16_t session = 0;
    std::string text;
    std::string hex;
    std::string file;
};

std::string BytesOf(const Data& data)
{
    if (data.file.empty()) return data.text + FromHex(data.hex);
    const auto bytes = ReadFile(data.file);
    return {bytes.begin(), bytes.end()};
}

Run BuildData(CLI::App& app)
{
    const auto data = Argument<Data>();
    AddSession(app, data->session);
    CLI::Option* const text = app.add_option("--text", data->text, "The bytes as text");
    CLI::Option* const hex = app.add_option("--hex", data->hex, "The bytes in hexadecimal")->excludes(text);
    app.add_option("--file", data->file, "File with the bytes, - for standard input")->excludes(text)->excludes(hex);
    return [data](Context& context)
    {
        AskSimulator(context.session, "SendEapData", g_variant_new("(q@ay)", data->session, ByteArray(BytesOf(*data))));
        return Asked("eap-data");
    };
}
}  // namespace

std::vector<Verb> SimEapVerbs()
{
    return {{"eap-open", "Open an accessory session and print its number", "ipodctl sim eap-open", BuildOpen},
            {"eap-close", "Close an accessory session", "ipodctl sim eap-close 1", BuildClose},
            {"eap-data", "Send bytes from the device on a session", "ipodctl sim eap-data 1 --text hello", BuildData}};
}
}  // namespace ctl
