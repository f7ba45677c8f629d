// The driver: runs one suite of comparisons and prints one line of JSON per comparison.
#include "calls.h"

#include <QBXLog.h>
#include <gvariant_data.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bus.h"
#include "contest.h"

namespace bench
{
namespace
{
const iPodPlayerButtonControl kButton = {1, 1, 100};
const EAPInfo kEapInfo = {"com.example.echo,com.example.other", "com.example.companion"};

void BareGetPlayStatus()
{
    GError* error = nullptr;
    gint status = 0;
    com_zarn_linux_ipod_call_get_play_status_sync(BareProxy(), &status, nullptr, &error);
    Check(error);
}

void BarePause()
{
    GError* error = nullptr;
    gboolean result = FALSE;
    com_zarn_linux_ipod_call_pause_sync(BareProxy(), &result, nullptr, &error);
    Check(error);
}

void BareGetCurrentMediaInfo()
{
    GError* error = nullptr;
    GVariant* info = nullptr;
    com_zarn_linux_ipod_call_get_current_media_info_sync(BareProxy(), &info, nullptr, &error);
    Check(error);
    g_variant_unref(info);
}

void BareSetButtonStatus(GVariant* control)
{
    GError* error = nullptr;
    gboolean result = FALSE;
    com_zarn_linux_ipod_call_set_button_status_sync(BareProxy(), control, &result, nullptr, &error);
    Check(error);
}

void BareEapInit(GVariant* info)
{
    GError* error = nullptr;
    com_zarn_linux_ipod_call_eap_init_sync(BareProxy(), info, nullptr, &error);
    Check(error);
}

void BareNotify()
{
    GError* error = nullptr;
    com_zarn_linux_ipod_call_carplay_connect_status_notify_sync(BareProxy(), TRUE, FALSE, nullptr, &error);
    Check(error);
}

void OnBareNotified(GObject* proxy, GAsyncResult* result, gpointer)
{
    GError* error = nullptr;
    com_zarn_linux_ipod_call_carplay_connect_status_notify_finish(COM_ZARN_LINUX_IPOD(proxy), result, &error);
    Check(error);
}

void BareNotifyLater()
{
    com_zarn_linux_ipod_call_carplay_connect_status_notify(BareProxy(), TRUE, FALSE, nullptr, OnBareNotified, nullptr);
}

GVariant* Packed(const void* record, int size)
{
    return g_variant_ref_sink(gvariant_data_build(const_cast<void*>(record), size));
}

GVariant* PackedEapInfo()
{
    char record[512] = {};
    kEapInfo.text1.copy(record, 255);
    kEapInfo.text2.copy(record + 256, 255);
    return Packed(record, sizeof(record));
}

// Waits until the asynchronous calls have been answered and their callbacks have run.
void Drain()
{
    BareGetPlayStatus();
    while (g_main_context_iteration(nullptr, FALSE)) continue;
}

Variant Drained(Variant variant)
{
    auto measure = std::move(variant.measure);
    variant.measure = [measure]
    {
        const double cost = measure();
        Drain();
        return cost;
    };
    return variant;
}

void CompareLoggingCommand(int calls)
{
    const char* const log = std::getenv("BENCH_LOG");
    QBX_LogInit((std::string("INFO:") + (log == nullptr ? "/dev/null" : log)).c_str());
    Run({"command with one log line", calls, {Timed("bare", BarePause), Timed("library", [] { Player()->Pause(); })}});
    QBX_LogInit("ERROR:/dev/null");
}
}  // namespace

void CompareCommands(int calls)
{
    GVariant* const button = Packed(&kButton, sizeof(kButton));
    GVariant* const eapInfo = PackedEapInfo();
    Run({"command without log line",
         calls,
         {Timed("bare", BareGetPlayStatus), Timed("library", [] { Player()->GetPlayStatus(); })}});
    CompareLoggingCommand(calls);
    Run({"SetButtonStatus",
         calls,
         {Timed("bare", [button] { BareSetButtonStatus(button); }),
          Timed("library", [] { Player()->SetButtonStatus(kButton); })}});
    Run({"EapInit",
         calls,
         {Timed("bare", [eapInfo] { BareEapInit(eapInfo); }), Timed("library", [] { Player()->EapInit(kEapInfo); })}});
    Run({"GetCurrentMediaInfo",
         calls,
         {Timed("bare", BareGetCurrentMediaInfo), Timed("library", [] { Player()->GetCurrentMediaInfo(); })}});
    Run({"CarPlayConnectStatusNotify",
         calls,
         {Drained(Timed("synchronous", BareNotify)), Drained(Timed("asynchronous", BareNotifyLater)),
          Drained(Timed("library", [] { Player()->CarPlayConnectStatusNotify(1, 0); }))}});
}
}  // namespace bench

namespace
{
int Usage()
{
    std::fprintf(stderr,
                 "usage: bench_calls commands|bulk|events|connecting|attachment CALLS [BIG-CALLS [CONTEST...]]\n");
    return 2;
}

bool RunSuite(const std::string& suite, int calls, int bigCalls)
{
    if (suite == "commands")
        bench::CompareCommands(calls);
    else if (suite == "bulk")
        bench::CompareBulk(calls, bigCalls);
    else if (suite == "events")
        bench::CompareEvents(calls);
    else if (suite == "connecting")
        bench::CompareConnecting(calls);
    else if (suite == "attachment")
        bench::MeasureAttachment();
    else
        return false;
    return true;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return Usage();
    const int calls = std::atoi(argv[2]);
    const int bigCalls = argc > 3 ? std::atoi(argv[3]) : calls;
    if (calls < 1 || bigCalls < 1) return Usage();
    if (argc > 4) bench::RunOnly({argv + 4, argv + argc});
    QBX_LogInit("ERROR:/dev/null");
    return RunSuite(argv[1], calls, bigCalls) ? 0 : Usage();
}
