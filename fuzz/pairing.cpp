// Fuzzes the pairing array, and other types in its place.
#include "harness.h"
#include "signal_callbacks.h"

namespace
{
using namespace fuzz;

constexpr const char* kTypes[] = {"a(y)", "ay", "a(yy)", "s", "v", "a(i)"};

const char* TypeOf(const std::uint8_t* data, std::size_t size)
{
    return size == 0 ? kTypes[0] : kTypes[data[0] % std::size(kTypes)];
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const char* const type = TypeOf(data, size);
    const std::size_t head = size > 0;
    const Variant value(
        g_variant_new_from_data(G_VARIANT_TYPE(type), data + head, size - head, FALSE, nullptr, nullptr));
    Listener().Forget();
    qbx::CallBack_OnOOBPairingInfo(Proxy(), "aa:bb", value.get(), Client());
    const std::vector<unsigned char> expected =
        type == kTypes[0] ? std::vector<unsigned char>(data + head, data + size) : std::vector<unsigned char>();
    Require(Listener().pairing == expected, "the pairing bytes");
    return 0;
}
