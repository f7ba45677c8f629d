// One of the two applications of a run. About faults it knows only what the public headers document about failed calls.
#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <glib.h>
#include <malloc.h>

#include <algorithm>
#include <random>
#include <stdexcept>

#include "pattern.h"
#include "roles.h"
#include "support/run_loop.h"

namespace soak
{
namespace
{
constexpr int kNoMode = 255;
constexpr int kMostEntries = 100000;
constexpr auto kShortestWait = std::chrono::milliseconds(1);
constexpr auto kLongestWait = std::chrono::milliseconds(16);

enum class Outcome
{
    Good,
    Failed,  ///< as documented
    Wrong,
};

std::uint64_t BytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Detects lost and duplicate numbered events. Each incarnation of the service counts from 0.
class EventCount
{
public:
    EventCount(Ledger& ledger, Role role) : m_ledger(ledger), m_role(role) {}

    void Take(int number, int incarnation)
    {
        if (incarnation != m_incarnation) CloseUntil(incarnation);
        if (number < m_expected) return m_ledger.Add(m_role, kDoubled);
        m_ledger.Add(m_role, kLost, static_cast<std::uint64_t>(number - m_expected));
        m_ledger.Add(m_role, kEvents);
        m_expected = number + 1;
    }

    /// Events of the previous incarnation that have not arrived by now are lost.
    void Close() { CloseUntil(m_incarnation + 1); }

private:
    void CloseUntil(int incarnation)
    {
        for (; m_incarnation > 0 && m_incarnation < incarnation; ++m_incarnation, m_expected = 0)
        {
            const auto sent = static_cast<int>(m_ledger.sent[m_incarnation]);
            m_ledger.Add(m_role, kLost, static_cast<std::uint64_t>(std::max(0, sent - m_expected)));
        }
        m_incarnation = incarnation;
    }

    Ledger& m_ledger;
    const Role m_role;
    int m_incarnation = 0;
    int m_expected = 0;
};

class Application : private IQBXIpodPlayerListener
{
public:
    Application(Ledger& ledger, Role role) : m_ledger(ledger), m_role(role), m_events(ledger, role)
    {
        if (!m_player.InitInstance()) throw std::runtime_error("no service");
        m_player.AddListener(this);
    }

    void Work()
    {
        for (int round = 0; m_ledger.ended == 0; ++round)
        {
            Round();
            if (round % 64 == 0) m_ledger.columns[m_role][kHeap] = BytesInUse();
        }
        test::RunLoopFor(std::chrono::milliseconds(500));
        m_events.Close();
    }

private:
    // Each kind of shared vector has one reader, as the contract requires.
    void Round()
    {
        Try(&Application::AskMode);
        Try(&Application::AskTrack);
        if (m_role == kSecondApplication) return Try(&Application::AskDatabasePage);
        Try(&Application::AskPlayingPage);
        Try(&Application::AskScribbledPage);
        Try(&Application::AskPicture);
        Try(&Application::WriteToAccessory);
    }

    // Events are delivered between calls; after a failed call, the application only does that for a while.
    void Try(Outcome (Application::*call)())
    {
        while (g_main_context_iteration(nullptr, FALSE)) continue;
        m_ledger.Add(m_role, kCalls);
        const Outcome outcome = (this->*call)();
        m_ledger.Add(m_role, outcome == Outcome::Good ? kGood : outcome == Outcome::Failed ? kFailed : kWrong);
        if (outcome == Outcome::Failed) test::RunLoopFor(m_wait);
        m_wait = outcome == Outcome::Failed ? std::min(2 * m_wait, kLongestWait) : kShortestWait;
    }

    Outcome AskMode()
    {
        const int mode = m_player.GetShuffleMode();
        if (mode == kNoMode) return Outcome::Failed;
        m_ledger.columns[m_role][kIncarnation] = static_cast<std::uint64_t>(mode);
        return Outcome::Good;
    }

    Outcome AskTrack()
    {
        const QBXiPodTrackInfo info = m_player.GetCurrentMediaInfo();
        if (info.text1.empty() && info.value1 == 0 && info.value4 == 0) return Outcome::Failed;
        return info.text1 == "title" && info.text4 == "genre" && info.value4 == 4 ? Outcome::Good : Outcome::Wrong;
    }

    Outcome AskPlayingPage()
    {
        const int begin = BeginOfPage();
        const int result = m_player.GetPlayingListItems(begin, begin + m_length - 1, m_names);
        return result == 0 ? Outcome::Failed : ComparePage(begin);
    }

    Outcome AskDatabasePage()
    {
        const int begin = BeginOfPage();
        int folder = -1;
        int root = -1;
        const int result = m_player.GetCurDBListItems(begin, begin + m_length - 1, m_names, folder, root);
        if (result == 0) return Outcome::Failed;
        return folder == 0 && root == 1 ? ComparePage(begin) : Outcome::Wrong;
    }

    // If the header is corrupt, so are the names, but there are never more than the segment can hold.
    Outcome AskScribbledPage()
    {
        const int result = m_player.GetUpdateListItems(0, 9, m_names);
        if (m_names.size() > kListSegmentSize / sizeof(PlayListSongNameStr)) return Outcome::Wrong;
        return result == 0 ? Outcome::Failed : Outcome::Good;
    }

    Outcome AskPicture()
    {
        const QBXTrackArtwork picture = m_player.GetPlayingTrackAlbumArtwork();
        if (picture.word2 == 0) return Outcome::Failed;
        ComparePayload(picture.image, picture.word1, kLargestPicture);
        return picture.word2 == picture.image.size() ? Outcome::Good : Outcome::Wrong;
    }

    // The service compares it.
    Outcome WriteToAccessory()
    {
        const auto session = static_cast<unsigned short>(++m_writes);
        Bytes bytes = Payload(session, kLargestWrite);
        return m_player.EapWrite(session, bytes) == 1 ? Outcome::Good : Outcome::Failed;
    }

    int BeginOfPage()
    {
        m_length = 1 + static_cast<int>(m_random() % kLongestPage);
        return static_cast<int>(m_random() % kMostEntries);
    }

    Outcome ComparePage(int begin)
    {
        if (m_names.size() != static_cast<std::size_t>(m_length)) return Outcome::Wrong;
        for (int i = 0; i < m_length; ++i) CompareName(m_names[static_cast<std::size_t>(i)], Name(begin + i));
        return Outcome::Good;
    }

    void CompareName(const std::string& actual, const std::string& wanted)
    {
        m_ledger.Add(m_role, kMoved, actual.size());
        if (actual != wanted) m_ledger.Add(m_role, kChanged, std::max(actual.size(), wanted.size()));
    }

    void ComparePayload(const Bytes& bytes, std::uint64_t number, std::size_t largest)
    {
        m_ledger.Add(m_role, kMoved, bytes.size());
        m_ledger.Add(m_role, kChanged, ChangedBytes(bytes.data(), bytes.size(), number, largest));
    }

    void OnPlayProgressChange(int number, int incarnation) override { m_events.Take(number, incarnation); }

    void OnIpodReceiveEapData(unsigned short session, Bytes& data) override
    {
        if (m_role != kSecondApplication) return;
        ComparePayload(data, session, kLargestNews);
        m_player.Seek(session);
    }

    void OnIpodArtworkChange(QBXTrackArtwork picture) override
    {
        if (m_role != kFirstApplication) return;
        ComparePayload(picture.image, picture.word1, kLargestNews);
        m_player.PlayPlayingList(static_cast<int>(picture.word1));
    }

    // The service never sends one that can be parsed.
    void OnIpodBatteryChange(const iPodBattery_t&) override { m_ledger.Add(m_role, kWrong); }
    void OnIpodPhoneCallChange(const iPodPhoneCall_t&) override { m_ledger.Add(m_role, kWrong); }

    Ledger& m_ledger;
    const Role m_role;
    EventCount m_events;
    IQBXIpodPlayer& m_player = *QBX_GetIpodPlayer();
    std::vector<std::string> m_names;
    std::chrono::milliseconds m_wait = kShortestWait;
    std::mt19937 m_random{7};
    int m_length = 0;
    unsigned m_writes = 0;
};
}  // namespace

void RunApplication(Ledger& ledger, Role role)
{
    Application(ledger, role).Work();
}
}  // namespace soak
