// Invalid objects with the segments' names, and other processes that corrupt the segments.
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <random>

#include "desk.h"
#include "helper_process.h"
#include "support/shared_vectors.h"
#include "support/text.h"

namespace faults
{
namespace
{
namespace bip = boost::interprocess;

constexpr char kListPath[] = "/dev/shm/ListVectorSharedMemory";
constexpr char kPlayingList[] = "VecPlayingListShareMemory";
constexpr uid_t kNobody = 65534;

void Put(const std::string& contents)
{
    std::ofstream(kListPath, std::ios::binary) << contents;
}

std::string Random(std::size_t size)
{
    std::mt19937 random(11);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

// Returns the contents of a file compressed with xz, such as an image of a segment.
std::string Unpacked(const std::string& path)
{
    std::string bytes;
    std::FILE* const pipe = popen(("xz -dc '" + path + "'").c_str(), "r");
    char block[65536];
    for (std::size_t count = 1; pipe != nullptr && count > 0;)
    {
        count = std::fread(block, 1, sizeof(block), pipe);
        bytes.append(block, count);
    }
    Expect(pclose(pipe) == 0 && !bytes.empty(), "the image " + path + " can be read");
    return bytes;
}

void PutPrivateObject()
{
    Put(std::string(kListSegmentSize, '\0'));
    chmod(kListPath, 0600);
}

void PutSoundSegment(std::size_t size)
{
    const QBXSharedSegment segment(bip::create_only, kListSegmentName, size);
}

// Root becomes another user, without permissions there.
void PutReadOnlySegment()
{
    PutSoundSegment(kListSegmentSize);
    chmod(kListPath, 0444);
    if (geteuid() == 0) Expect(chown(kListPath, kNobody, kNobody) == 0, "an object of another user");
}

void PutObject(const Arguments& arguments)
{
    const std::string& kind = arguments.at(0);
    if (kind == "empty") Put("");
    if (kind == "one-byte") Put("\x02");
    if (kind == "zeros") Put(std::string(kListSegmentSize, '\0'));
    if (kind == "half-made") Put(std::string("\x01\0\0\0", 4) + std::string(kListSegmentSize - 4, '\0'));
    if (kind == "state-only") Put(std::string("\x02\0\0\0", 4) + std::string(kListSegmentSize - 4, '\0'));
    if (kind == "garbage") Put(Random(kListSegmentSize));
    if (kind == "fifo") mkfifo(kListPath, 0644);
    if (kind == "directory") mkdir(kListPath, 0755);
    if (kind == "link-to-nowhere") Expect(symlink("/dev/shm/nowhere/at/all", kListPath) == 0, "a link");
    if (kind == "link-to-itself") Expect(symlink(kListPath, kListPath) == 0, "a link");
    if (kind == "other-layout") Put(Unpacked(arguments.at(1)));
    if (kind == "not-readable") PutPrivateObject();
    if (kind == "read-only") PutReadOnlySegment();
    if (kind == "of-another-user") PutSoundSegment(kListSegmentSize), chmod(kListPath, 0644);
    if (kind == "larger") PutSoundSegment(2 * kListSegmentSize);
    if (kind == "smaller") PutSoundSegment(kListSegmentSize / 2);
}

// Permissions do not apply to root.
void BecomeNobody(const std::string& kind)
{
    if (kind == "not-readable" || kind == "read-only" || kind == "of-another-user")
        Expect(geteuid() != 0 || seteuid(kNobody) == 0, "another user");
}

// Returns the outcome of the first QBX_GetIpodPlayer(): "attached" or the text of its exception.
std::string Attach()
{
    try
    {
        QBX_GetIpodPlayer();
        return "attached";
    }
    catch (const bip::interprocess_exception& e)
    {
        return std::string("exception: ") + e.what();
    }
}

// Attaches and prints the outcome; commands work in either case.
void AttachAndCall(const std::string& kind)
{
    test::PrivateBus bus;
    test::FakeService service;
    AnswerLiveness(service);
    BecomeNobody(kind);
    const auto start = Clock::now();
    Say(Attach());
    Figure("seconds", SecondsSince(start));
    Expect(geteuid() == getuid() || seteuid(getuid()) == 0, "the own user again");
    ExpectAlive(Connected());
}

void Object(const Arguments& arguments)
{
    PutObject(arguments);
    AttachAndCall(arguments.at(0));
}

void FullDevice(const Arguments& arguments)
{
    const std::string size = "mode=1777,size=" + arguments.at(0);
    if (mount("tmpfs", "/dev/shm", "tmpfs", 0, size.c_str()) != 0) return Say("not possible here");
    AttachAndCall("");
}

void FilledLater(const Arguments&)
{
    if (mount("tmpfs", "/dev/shm", "tmpfs", 0, "mode=1777,size=64k") != 0) return Say("not possible here");
    Desk desk;
    std::vector<unsigned char> payload(kBufferSegmentSize / 2);
    desk.player.EapWrite(1, payload);
    Expect(false, "writing pages that cannot be allocated terminates the process");
}

std::string PlayingList(Desk& desk)
{
    std::vector<std::string> list;
    desk.player.GetPlayingListItems(0, 9, list);
    return test::Text(list);
}

// Each read terminates and never returns more than the segment can hold.
void ReadOften(Desk& desk, int times, const std::function<void()>& before)
{
    std::vector<std::string> list;
    std::size_t most = 0;
    for (int i = 0; i < times; ++i)
    {
        before();
        desk.player.GetPlayingListItems(0, 9, list);
        most = std::max(most, list.size());
    }
    Expect(most > 0, "some headers look right");
    Expect(most <= kListSegmentSize / sizeof(PlayListSongNameStr), "no page is larger than the segment");
    Figure("reads", times);
    Figure("most_names", static_cast<double>(most));
}

void RewrittenHeader(const Arguments& arguments)
{
    Desk desk;
    desk.service.Answer("GetPlayingListItems", "(true,)");
    HelperProcess scribbler(HelperProcess::Own({"scribble"}));
    scribbler.WaitFor("scribbles");
    ReadOften(desk, std::stoi(arguments.at(0)), [] {});
    scribbler.Kill();
    desk.ExpectAlive();
}

// No process can survive this, because the pages no longer exist.
void CutWhileMapped(const Arguments&)
{
    test::SharedVectors vectors;
    vectors.SetList(kPlayingList, {"one"});
    Desk desk;
    desk.service.Answer("GetPlayingListItems", "(true,)");
    ExpectText("page", PlayingList(desk), "[\"one\"]");
    Expect(truncate(kListPath, 0) == 0, "the object is cut");
    PlayingList(desk);
    Expect(false, "reading the truncated segment terminates the process");
}

void RecreatedSegment(const Arguments&)
{
    test::SharedVectors vectors;
    vectors.SetList(kPlayingList, {"old"});
    Desk desk;
    desk.service.Answer("GetPlayingListItems", "(true,)");
    shm_unlink(kListSegmentName);
    test::SharedVectors recreated;
    recreated.SetList(kPlayingList, {"new"});
    ExpectText("page", PlayingList(desk), "[\"old\"]");
    desk.ExpectAlive();
}

void ExpectTenSeconds(Clock::time_point start)
{
    const double seconds = SecondsSince(start);
    Figure("seconds", seconds);
    Expect(seconds > 9 && seconds < 11, "10 s, give or take one");
}

void LockedNames(const Arguments&)
{
    HelperProcess holder(HelperProcess::Own({"hold-the-names"}));
    holder.WaitFor("holds");
    holder.Kill();
    const auto start = Clock::now();
    AttachAndCall("");
    ExpectTenSeconds(start);
}

void LockedMemory(const Arguments&)
{
    Desk desk;
    HelperProcess holder(HelperProcess::Own({"die-while-allocating"}));
    Expect(WTERMSIG(holder.Wait()) == SIGSEGV, "the holder dies where it should");
    std::vector<unsigned char> payload(1000);
    const auto start = Clock::now();
    try
    {
        desk.player.EapWrite(1, payload);
        Expect(false, "EapWrite() throws");
    }
    catch (const bip::interprocess_exception& e)
    {
        Say(std::string("exception: ") + e.what());
    }
    ExpectTenSeconds(start);
    Expect(desk.service.Calls().empty(), "the service is not called");
    desk.ExpectAlive();
}
}  // namespace

std::vector<Case> SegmentCases()
{
    return {{"object", Object},
            {"full-device", FullDevice},
            {"filled-later", FilledLater},
            {"rewritten-header", RewrittenHeader},
            {"cut-while-mapped", CutWhileMapped},
            {"recreated-segment", RecreatedSegment},
            {"locked-names", LockedNames},
            {"locked-memory", LockedMemory}};
}
}  // namespace faults
