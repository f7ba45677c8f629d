// Fuzzes the bytes of a battery state.
#include "harness.h"
#include "reference_message.h"
#include "signal_callbacks.h"

namespace
{
using namespace fuzz;

const Fields kFields = {{1, {Kind::Enumeration, 3}}, {2, {Kind::Number}}};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Variant value(Wrapped(data, size));
    Listener().Forget();
    qbx::CallBack_OnIpodBatteryChange(Proxy(), value.get(), Client());
    const auto expected = ReadMessage(data, size, kFields);
    const auto& battery = Listener().battery;
    Require(battery.has_value() == (size > 0 && expected.has_value()), "whether there is an event");
    if (!battery) return 0;
    const auto& numbers = expected->numbers;
    Require(battery->BatteryChargingStatus.has_value() == (numbers.count(1) > 0), "presence of the status");
    Require(battery->BatteryChargeLevel.has_value() == (numbers.count(2) > 0), "presence of the level");
    if (numbers.count(1) > 0) Require(*battery->BatteryChargingStatus == static_cast<int>(numbers.at(1)), "status");
    if (numbers.count(2) > 0) Require(*battery->BatteryChargeLevel == numbers.at(2) % 65536, "level");
    return 0;
}
