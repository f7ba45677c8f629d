// Memory that calls leak in the application's heap: none, except where the contract requires it.
#include <algorithm>
#include <functional>

#include "desk.h"

namespace faults
{
namespace
{
constexpr int kWarmUp = 3000;
constexpr int kBatches = 8;
constexpr int kTimes = 500;
constexpr double kNothing = 1;  // bytes per call: pools fluctuate slightly
constexpr double kMostOfADemandedLeak = 600;

using Call = std::function<void(IQBXIpodPlayer&)>;

struct Family
{
    const char* name;
    Call call;
};

void AskForAPage(IQBXIpodPlayer& player)
{
    std::vector<std::string> list;
    player.GetPlayingListItems(0, 9, list);
}

void WriteToAccessory(IQBXIpodPlayer& player)
{
    std::vector<unsigned char> payload(100);
    player.EapWrite(1, payload);
}

void AskForAText(IQBXIpodPlayer& player)
{
    std::string name;
    player.GetIpodName(name);
}

const std::vector<Family> kReleasing = {
    {"page", AskForAPage},
    {"record", std::mem_fn(&IQBXIpodPlayer::GetCurrentMediaInfo)},
    {"picture", std::mem_fn(&IQBXIpodPlayer::GetPlayingTrackAlbumArtwork)},
};

const std::vector<Family> kKeepingTheError = {
    {"number", std::mem_fn(&IQBXIpodPlayer::GetShuffleMode)},
    {"truth", std::mem_fn(&IQBXIpodPlayer::Next)},
    {"order", std::bind(&IQBXIpodPlayer::Seek, std::placeholders::_1, 1)},
    {"accessory_payload", WriteToAccessory},
};

const std::vector<Family> kKeepingTheText = {{"text", AskForAText}};

void Repeat(IQBXIpodPlayer& player, const Call& call, int times)
{
    for (int i = 0; i < times; ++i) call(player);
    while (g_main_context_iteration(nullptr, FALSE)) continue;
}

double KeptInABatch(IQBXIpodPlayer& player, const Call& call)
{
    const auto before = static_cast<double>(BytesInUse());
    Repeat(player, call, kTimes);
    return (static_cast<double>(BytesInUse()) - before) / kTimes;
}

// The minimum of all batches: it includes leaks of every call, but not occasional growth of pools.
double KeptPerCall(IQBXIpodPlayer& player, const Call& call)
{
    double least = KeptInABatch(player, call);
    for (int i = 1; i < kBatches; ++i) least = std::min(least, KeptInABatch(player, call));
    return std::max(least, 0.0);
}

// Expects between @p fewest and @p most leaked bytes per call in total.
void ExpectKept(IQBXIpodPlayer& player, const char* when, const std::vector<Family>& families, double fewest,
                double most)
{
    for (const Family& family : families)
    {
        const double kept = KeptPerCall(player, family.call);
        Figure((std::string(family.name) + "_" + when).c_str(), kept);
        Expect(kept >= fewest && kept <= most, std::string("what ") + family.name + " keeps " + when);
    }
}

constexpr const char* kMethods[] = {"GetPlayingListItems",
                                    "GetCurrentMediaInfo",
                                    "GetPlayingTrackAlbumArtwork",
                                    "GetShuffleMode",
                                    "Next",
                                    "Seek",
                                    "EapWrite",
                                    "GetIpodName"};

void AnswerEverything(test::FakeService& service)
{
    service.Answer("GetPlayingListItems", "(true,)");
    service.Answer("GetCurrentMediaInfo", "(<@ay []>,)");
    service.Answer("GetPlayingTrackAlbumArtwork", "(<@ay []>,)");
    service.Answer("GetShuffleMode", "(1,)");
    service.Answer("Next", "(true,)");
    service.Answer("Seek", "()");
    service.Answer("EapWrite", "(true,)");
    service.Answer("GetIpodName", "('iPod of somebody',)");
}

void ExpectDemandedLeaks(IQBXIpodPlayer& player, const char* when)
{
    Repeat(player, kReleasing.front().call, kWarmUp);
    ExpectKept(player, when, kReleasing, 0, kNothing);
    ExpectKept(player, when, kKeepingTheError, kNothing, kMostOfADemandedLeak);
    ExpectKept(player, when, kKeepingTheText, kNothing, kMostOfADemandedLeak);
}

void KeptByACall(const Arguments&)
{
    Desk desk;
    desk.service.KeepNoCalls();
    AnswerEverything(desk.service);
    Repeat(desk.player, kReleasing.front().call, kWarmUp);
    ExpectKept(desk.player, "answered", kReleasing, 0, kNothing);
    ExpectKept(desk.player, "answered", kKeepingTheError, 0, kNothing);
    ExpectKept(desk.player, "answered", kKeepingTheText, kNothing, kMostOfADemandedLeak);
    desk.ExpectAlive();
}

void KeptByAFailedCall(const Arguments&)
{
    Desk desk;
    desk.service.KeepNoCalls();
    for (const char* const method : kMethods) desk.service.Fail(method, "it is broken");
    ExpectDemandedLeaks(desk.player, "refused");
    desk.ExpectAlive();
}

void KeptByACallAnsweredWithAnotherType(const Arguments&)
{
    Desk desk;
    desk.service.KeepNoCalls();
    for (const char* const method : kMethods) desk.service.AnswerInvalid(method, "('another type', 1)");
    ExpectDemandedLeaks(desk.player, "of_another_type");
    desk.ExpectAlive();
}

void KeptByACallThatNobodyAnswers(const Arguments&)
{
    Desk desk;
    desk.service.Vanish();
    ExpectDemandedLeaks(desk.player, "alone");
    test::FakeService later;
    AnswerLiveness(later);
    test::RunLoopUntil([&] { return desk.player.GetPlayStatus() == 77; });
    desk.ExpectAlive();
}
}  // namespace

std::vector<Case> MemoryCases()
{
    return {{"kept-by-a-call", KeptByACall},
            {"kept-by-a-failed-call", KeptByAFailedCall},
            {"kept-by-a-call-answered-with-another-type", KeptByACallAnsweredWithAnotherType},
            {"kept-by-a-call-that-nobody-answers", KeptByACallThatNobodyAnswers}};
}
}  // namespace faults
