#include "control/control.h"

#include "actions/scenario.h"
#include "faults/fault_table.h"
#include "service/answer.h"

namespace ipodsim
{
namespace control
{
namespace
{
VariantPtr Child(GVariant* value, gsize index)
{
    return VariantPtr(g_variant_get_child_value(value, index));
}

// Field by field: D-Bus has no empty tuple.
GVariant* ToValues(GVariant* value)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("av"));
    const bool tuple = value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE_TUPLE) != FALSE;
    for (gsize i = 0; tuple && i < g_variant_n_children(value); ++i)
        g_variant_builder_add(&builder, "v", Child(value, i).get());
    if (value != nullptr && !tuple) g_variant_builder_add(&builder, "v", value);
    return g_variant_builder_end(&builder);
}

GVariant* ToVariant(const LoggedCall& call)
{
    const char* const outcome = !call.error.empty() ? call.error.c_str() : call.answer == nullptr ? "nothing" : "reply";
    return g_variant_new("(tss@avs@av)", static_cast<guint64>(call.time), call.sender.c_str(), call.method.c_str(),
                         ToValues(call.arguments.get()), outcome, ToValues(call.answer.get()));
}

std::string Do(Service& service, const gchar* action)
{
    try
    {
        return ipodsim::Do(service, action).dump();
    }
    catch (const InvalidInput& error)
    {
        throw InvalidRequest(error.what());
    }
}

GVariant* Calls(Service& service, const gchar* method)
{
    if (*method != '\0') RequireMethod(method);
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(tssavsav)"));
    for (const LoggedCall& call : service.calls.Calls())
        if (*method == '\0' || call.method == method) g_variant_builder_add_value(&builder, ToVariant(call));
    return g_variant_builder_end(&builder);
}

void ClearCalls(Service& service)
{
    service.calls.Clear();
}

using Interface = ComZarnLinuxIpodSimulatorIface;

const MethodRow kMethods[] = {
    Method<com_zarn_linux_ipod_simulator_complete_do_action, &Do>("handle-do-action", &Interface::handle_do_action),
    Method<com_zarn_linux_ipod_simulator_complete_calls, &Calls>("handle-calls", &Interface::handle_calls),
    Method<com_zarn_linux_ipod_simulator_complete_clear_calls, &ClearCalls>("handle-clear-calls",
                                                                            &Interface::handle_clear_calls),
};
}  // namespace
}  // namespace control

void AnswerControl(ComZarnLinuxIpodSimulator* skeleton, Service& service)
{
    Connect(skeleton, control::kMethods, service);
    service.calls.added = [skeleton](const LoggedCall& call)
    { com_zarn_linux_ipod_simulator_emit_called(skeleton, control::ToVariant(call)); };
}
}  // namespace ipodsim
