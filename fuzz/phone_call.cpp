// Fuzzes the bytes of a phone call.
#include "harness.h"
#include "reference_message.h"
#include "signal_callbacks.h"

namespace
{
using namespace fuzz;

const Fields kFields = {{1, {Kind::Text}},
                        {2, {Kind::Text}},
                        {3, {Kind::Enumeration, 6}},
                        {4, {Kind::Enumeration, 2}},
                        {5, {Kind::Text}},
                        {6, {Kind::Text}},
                        {7, {Kind::Text}},
                        {8, {Kind::Enumeration, 3}},
                        {9, {Kind::Number}},
                        {10, {Kind::Number}},
                        {11, {Kind::Enumeration, 2}},
                        {12, {Kind::Number}}};

void RequireText(const Message& message, std::uint32_t number, const std::optional<std::string>& member)
{
    const auto found = message.texts.find(number);
    Require((found != message.texts.end()) == member.has_value(), "presence of a text");
    if (member) Require(*member == found->second, "a text");
}

template <class Number>
void RequireNumber(const Message& message, std::uint32_t number, const std::optional<Number>& member)
{
    const auto found = message.numbers.find(number);
    Require((found != message.numbers.end()) == member.has_value(), "presence of a number");
    if (member) Require(*member == static_cast<Number>(found->second), "a number");
}

void RequireSame(const Message& message, const iPodPhoneCall_t& call)
{
    RequireText(message, 1, call.RemoteID);
    RequireText(message, 2, call.DisplayName);
    RequireNumber(message, 3, call.Status);
    RequireNumber(message, 4, call.Direction);
    RequireText(message, 5, call.CallUUID);
    RequireText(message, 6, call.AddressBookID);
    RequireText(message, 7, call.Label);
    RequireNumber(message, 8, call.Service);
    RequireNumber(message, 9, call.IsConferenced);
    RequireNumber(message, 10, call.ConferenceGroup);
    RequireNumber(message, 11, call.DisconnectReason);
    RequireNumber(message, 12, call.StartTimestamp);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Variant value(Wrapped(data, size));
    Listener().Forget();
    qbx::CallBack_OnIpodPhoneCallChange(Proxy(), value.get(), Client());
    const auto expected = ReadMessage(data, size, kFields);
    const auto& call = Listener().phoneCall;
    Require(call.has_value() == (size > 0 && expected.has_value()), "whether there is an event");
    if (call) RequireSame(*expected, *call);
    return 0;
}
