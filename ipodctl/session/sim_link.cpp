#include "session/sim_link.h"

#include <utility>

#include "output/failure.h"
#include "output/text.h"
#include "session/bus_daemon.h"

namespace ctl
{
namespace
{
constexpr Address kSimulator{"com.zarn.linux.ipod.Simulator", "/com/zarn/linux/ipod/simulator"};

[[noreturn]] void Fail(GError* error)
{
    const bool nobody = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
                        g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER);
    const bool refused =
        g_dbus_error_is_remote_error(error) && !g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY);
    g_dbus_error_strip_remote_error(error);
    const std::string message = error->message;
    g_error_free(error);
    if (nobody) throw Failure(kNoService, "no simulator on the bus; start ipod-simulator");
    if (refused) throw Failure(kNothingDone, "the simulator refused: " + message);
    throw Failure(kServiceLost, "the simulator did not answer: " + message + "; see whether it hangs");
}
}  // namespace

VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* const reply = CallAndLog(session.Bus(), kSimulator, method, arguments, session.Deadline(), &error);
    if (reply == nullptr) Fail(error);
    return VariantPtr(reply);
}

GVariant* ByteArray(const std::string& bytes)
{
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
}

std::string FromHex(const std::string& hex)
{
    if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw Failure(kUsage, "--hex: expected pairs of hexadecimal digits, not '" + Printable(hex) + "'");
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

void Fields::Add(const char* key, GVariant* value)
{
    m_fields.emplace_back(key, VariantPtr(g_variant_ref_sink(value)));
}

GVariant* Fields::Take()
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
    for (const auto& [key, value] : std::exchange(m_fields, {}))
        g_variant_builder_add(&builder, "{sv}", key.c_str(), value.get());
    return g_variant_builder_end(&builder);
}
}  // namespace ctl
