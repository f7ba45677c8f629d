// Lists the calls that the simulator received.
#include <ipod_dbus.h>

#include <algorithm>
#include <cstdint>

#include "output/text.h"
#include "session/session.h"
#include "verbs/usage.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
struct CallQuery
{
    std::string method;
    bool clear = false;
};

// Formats a value in GVariant text notation.
std::string ToText(GVariant* value)
{
    char* const text = g_variant_print(value, FALSE);
    std::string copy = text;
    g_free(text);
    return copy;
}

// Formats values as "(1, 'text')".
std::string ToText(GVariantIter* values)
{
    std::string text;
    for (GVariant* value = nullptr; g_variant_iter_loop(values, "v", &value) != FALSE;)
        text += (text.empty() ? "" : ", ") + ToText(value);
    return "(" + text + ")";
}

// Replaces long byte arrays with their length to keep the table readable.
std::string Shortened(std::string text)
{
    constexpr std::size_t kMostCharacters = 100;
    constexpr char kBytes[] = "[byte ";
    for (std::size_t begin = text.find(kBytes); begin != std::string::npos; begin = text.find(kBytes, begin + 1))
    {
        const std::size_t end = text.find(']', begin);
        if (end == std::string::npos || end - begin <= kMostCharacters) continue;
        const auto bytes = std::count(text.data() + begin, text.data() + end, ',') + 1;
        text.replace(begin, end - begin, "[" + std::to_string(bytes) + " bytes");
    }
    return Printable(text);
}

struct Call
{
    std::uint64_t time = 0;
    std::string sender;
    std::string method;
    std::string arguments;
    std::string answer;
};

Call ToCall(GVariant* entry)
{
    Call call;
    const char* sender = nullptr;
    const char* method = nullptr;
    const char* outcome = nullptr;
    GVariantIter* arguments = nullptr;
    GVariantIter* answer = nullptr;
    g_variant_get(entry, "(t&s&sav&sav)", &call.time, &sender, &method, &arguments, &outcome, &answer);
    call.sender = sender;
    call.method = method;
    call.arguments = ToText(arguments);
    call.answer = ToText(answer);
    if (std::string(outcome) == "nothing") call.answer = "no answer";
    if (g_dbus_is_interface_name(outcome) != FALSE) call.answer = outcome + (" " + call.answer);
    g_variant_iter_free(arguments);
    g_variant_iter_free(answer);
    return call;
}

// Returns the method names of the service's D-Bus interface.
std::vector<std::string> Methods()
{
    std::vector<std::string> names;
    const GDBusInterfaceInfo* const contract = com_zarn_linux_ipod_interface_info();
    for (GDBusMethodInfo** method = contract->methods; *method != nullptr; ++method)
        names.emplace_back((*method)->name);
    return names;
}

void CheckMethod(const std::string& method)
{
    const std::vector<std::string> methods = Methods();
    if (method.empty() || std::find(methods.begin(), methods.end(), method) != methods.end()) return;
    throw UnknownWord("method", method, methods, "try 'ipodctl sim calls'");
}

Answer ShowCalls(Context& context, const std::string& method)
{
    CheckMethod(method);
    const VariantPtr reply = AskSimulator(context.session, "Calls", g_variant_new("(s)", method.c_str()));
    const VariantPtr entries(g_variant_get_child_value(reply.get(), 0));
    Json calls = Json::array();
    std::vector<std::vector<std::string>> rows;
    for (gsize i = 0; i < g_variant_n_children(entries.get()); ++i)
    {
        const VariantPtr entry(g_variant_get_child_value(entries.get(), i));
        const Call call = ToCall(entry.get());
        calls.push_back({{"time_us", call.time},
                         {"sender", call.sender},
                         {"method", call.method},
                         {"arguments", call.arguments},
                         {"answer", call.answer}});
        rows.push_back({Moment::At(static_cast<std::int64_t>(call.time)).clock, call.sender, call.method,
                        Shortened(call.arguments), Shortened(call.answer)});
    }
    return {{{"verb", "sim calls"}, {"calls", calls}}, Table(rows, context.out.width())};
}

Run BuildCalls(CLI::App& app)
{
    const auto query = Argument<CallQuery>();
    app.add_option("method", query->method, "List only calls to this method");
    app.add_flag("--clear", query->clear, "Clear the list of calls instead");
    return [query](Context& context) -> Answer
    {
        if (!query->clear) return ShowCalls(context, query->method);
        AskSimulator(context.session, "ClearCalls", nullptr);
        return {{{"verb", "sim calls"}}, ""};
    };
}

}  // namespace

Verb SimCallsVerb()
{
    return {"calls", "List the calls that the simulator received",
            "ipodctl sim calls\nipodctl sim calls Play\nipodctl sim calls --clear", BuildCalls};
}
}  // namespace ctl
