// Shows the name and the battery of the device, or why they are unknown, for as long as it runs.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <iostream>

using namespace ipodkit;

namespace
{
template <class T>
std::string Reason(const Known<T>& field)
{
    return field.Cause() == nullptr ? ToString(field.Why()) : field.Cause()->Text();
}

void Show(const PlayerState& state)
{
    std::cout << "name: " << (state.deviceName ? *state.deviceName : Reason(state.deviceName)) << '\n';
    if (state.battery)
        std::cout << "battery: " << state.battery->percent.value_or(0) << " %" << std::endl;
    else
        std::cout << "battery: " << Reason(state.battery) << std::endl;
}
}  // namespace

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;

    const auto show = [&session](const StatePtr& state, Fields)
    {
        Show(*state);
        if (state->Why(Field::DeviceName) == Unknown::Refused) (*session)->Refresh(Field::DeviceName);
    };
    const Subscription shown = (*session)->OnState("device", show, Field::DeviceName | Field::Battery);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
