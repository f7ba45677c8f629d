// The service of a run: correct unless told to inject a fault.
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <random>
#include <sstream>

#include "pattern.h"
#include "roles.h"
#include "support/fake_service.h"
#include "support/shared_vectors.h"

namespace soak
{
namespace
{
constexpr int kEventsAtOnce = 20;
constexpr int kMillisecondsBetween = 10;
constexpr int kCallsBeforeEvents = 8;  // by then an application has received everything from the previous incarnation

/// The vectors, looked up only once: a process killed during a lookup would leave the segment locked.
struct Vectors
{
    Vectors()
    {
        for (QBXByteVector* bytes : {&write, &read, &picture, &news}) bytes->reserve(kLargestWrite);
        for (QBXStringPageVector* names : {&playing, &database}) names->reserve(kLongestPage);
    }

    test::SharedVectors all;
    QBXStringPageVector& playing = all.List("VecPlayingListShareMemory");
    QBXStringPageVector& database = all.List("VecDBListShareMemory");
    QBXStringPageVector& scribbled = all.List("VecUpdateListShareMemory");
    QBXByteVector& write = all.Buffer("VecEapWriteBufferShareMemory");
    QBXByteVector& read = all.Buffer("VecEapReadBufferShareMemory");
    QBXByteVector& picture = all.Buffer("VecArtworkBufferShareMemory");
    QBXByteVector& news = all.Buffer("VecArtworkChangeBufferShareMemory");
};

void Fill(QBXByteVector& vector, const Bytes& bytes)
{
    vector.assign(bytes.begin(), bytes.end());
}

GVariant* Variant(const void* bytes, std::size_t size)
{
    return g_variant_new_variant(g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes, size, 1));
}

GVariant* PictureHead(std::uint32_t number, std::size_t size)
{
    const std::uint32_t words[] = {number, static_cast<std::uint32_t>(size), 0, 0};
    return Variant(words, sizeof(words));
}

GVariant* Track(int incarnation)
{
    struct
    {
        char text[4][256];
        std::int32_t value[4];
    } record = {{"title", "artist", "album", "genre"}, {incarnation, 2, 3, 4}};
    return Variant(&record, sizeof(record));
}

/// Data in a vector, which stays there until its receiver has confirmed it.
class Parcel
{
public:
    void Send(int number) { m_underWay = number; }
    void Confirm(int number) { m_underWay.compare_exchange_strong(number, kNothing); }
    bool Received() const { return m_underWay == kNothing; }

private:
    static constexpr int kNothing = -1;
    std::atomic<int> m_underWay{kNothing};
};

class Service
{
public:
    Service(Ledger& ledger, std::uint64_t incarnation)
        : m_ledger(ledger),
          m_incarnation(static_cast<int>(incarnation)),
          m_number(static_cast<std::uint32_t>(m_random()))
    {
        m_service.KeepNoCalls();
        ServeQueries();
        ServeBulk();
        ServeReceipts();
    }

    void Inject(const std::string& line)
    {
        std::istringstream words(line);
        std::string kind;
        int count = 0;
        words >> kind >> count;
        if (kind == "errors") m_errors = count;
        if (kind == "silence") m_silences = count;
        if (kind == "nonsense") m_nonsense = count, EmitNonsense(count);
        if (kind == "flood") m_flood = count;
        if (kind == "scribble") Scribble(count);
    }

    void EmitWhatIsDue()
    {
        if (!EverybodyListens()) return;
        Emit(kEventsAtOnce + std::exchange(m_flood, 0));
        if (m_read.Received()) EmitRead();
        if (m_news.Received()) EmitNews();
    }

private:
    using Reply = std::function<GVariant*(GVariant* arguments)>;

    // Handles calls that may be falsified.
    void Serve(const char* method, Reply reply)
    {
        m_service.React(method,
                        [this, reply = std::move(reply)](GDBusMethodInvocation* invocation)
                        {
                            Note(invocation);
                            if (!Spoil(invocation)) Answer(invocation, reply);
                        });
    }

    void Answer(GDBusMethodInvocation* invocation, const Reply& reply)
    {
        g_dbus_method_invocation_return_value(invocation, reply(g_dbus_method_invocation_get_parameters(invocation)));
        m_ledger.Add(kService, kCalls);
    }

    static bool TakeOne(std::atomic<int>& left) { return left > 0 && left-- > 0; }

    // Runs only on the fake service's thread.
    bool Spoil(GDBusMethodInvocation* invocation)
    {
        if (TakeOne(m_silences)) return true;
        if (TakeOne(m_errors))
        {
            g_dbus_method_invocation_return_dbus_error(invocation, "com.example.Injected", "%s%n injected");
            return true;
        }
        if (!TakeOne(m_nonsense)) return false;
        test::FakeService::Respond(invocation,
                                   ipodsim::Reply::Malformed(m_nonsense % 2 == 0 ? "('text', 1)" : "(<'text'>,)"));
        return true;
    }

    void Note(GDBusMethodInvocation* invocation)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_callers[g_dbus_method_invocation_get_sender(invocation)];
    }

    bool EverybodyListens() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        int listening = 0;
        for (const auto& caller : m_callers) listening += caller.second >= kCallsBeforeEvents;
        return listening == 2;
    }

    void ServeQueries()
    {
        Serve("GetShuffleMode", [this](GVariant*) { return g_variant_new("(i)", m_incarnation); });
        Serve("GetCurrentMediaInfo", [this](GVariant*) { return g_variant_new("(@v)", Track(m_incarnation)); });
        Serve("GetUpdateListItems", [](GVariant*) { return g_variant_new("(b)", TRUE); });
    }

    void ServeBulk()
    {
        Serve("GetPlayingListItems",
              [this](GVariant* range)
              {
                  FillPage(m_vectors.playing, range);
                  return g_variant_new("(b)", TRUE);
              });
        Serve("GetCurDbListItems",
              [this](GVariant* range)
              {
                  FillPage(m_vectors.database, range);
                  return g_variant_new("(bbb)", FALSE, TRUE, TRUE);
              });
        Serve("GetPlayingTrackAlbumArtwork", [this](GVariant*) { return FillPicture(); });
        Serve("EapWrite", [this](GVariant* session) { return TakeWrite(session); });
    }

    // Never falsified: receivers confirm data so that the next can be sent.
    void ServeReceipts()
    {
        ServeReceipt("Seek", m_read);
        ServeReceipt("PlayPlayingList", m_news);
    }

    void ServeReceipt(const char* method, Parcel& parcel)
    {
        m_service.React(method,
                        [this, &parcel](GDBusMethodInvocation* invocation)
                        {
                            gint32 number = 0;
                            g_variant_get(g_dbus_method_invocation_get_parameters(invocation), "(i)", &number);
                            parcel.Confirm(number);
                            Answer(invocation, [](GVariant*) { return g_variant_new("()"); });
                        });
    }

    static void FillPage(QBXStringPageVector& vector, GVariant* range)
    {
        gint32 begin = 0;
        gint32 end = 0;
        g_variant_get(range, "(ii)", &begin, &end);
        vector.clear();
        for (int i = begin; i <= end && i - begin < kLongestPage; ++i) vector.push_back(test::Entry(Name(i)));
    }

    GVariant* FillPicture()
    {
        const std::uint32_t number = NextNumber();
        const Bytes bytes = Payload(number, kLargestPicture);
        Fill(m_vectors.picture, bytes);
        return g_variant_new("(@v)", PictureHead(number, bytes.size()));
    }

    // The session number is the number of the payload.
    GVariant* TakeWrite(GVariant* arguments)
    {
        guint16 session = 0;
        g_variant_get(arguments, "(q)", &session);
        const QBXByteVector& bytes = m_vectors.write;
        m_ledger.Add(kService, kMoved, bytes.size());
        m_ledger.Add(kService, kChanged, ChangedBytes(bytes.data(), bytes.size(), session, kLargestWrite));
        return g_variant_new("(b)", TRUE);
    }

    void Emit(int count)
    {
        for (int i = 0; i < count; ++i)
            m_service.EmitBody("OnPlayProgressChange", g_variant_new("(ii)", m_emitted++, m_incarnation));
        m_service.Flush();
        m_ledger.sent[m_incarnation] = static_cast<std::uint64_t>(m_emitted);
        m_ledger.Add(kService, kEvents, static_cast<std::uint64_t>(count));
    }

    void EmitRead()
    {
        const auto session = static_cast<guchar>(++m_number);
        m_read.Send(session);
        Fill(m_vectors.read, Payload(session, kLargestNews));
        m_service.EmitBody("OnIpodReceiveEapData", g_variant_new("(y)", session));
    }

    void EmitNews()
    {
        const auto number = NextNumber();
        const Bytes bytes = Payload(number, kLargestNews);
        m_news.Send(static_cast<int>(number));
        Fill(m_vectors.news, bytes);
        m_service.EmitBody("OnIpodArtworkChange", g_variant_new("(@v)", PictureHead(number, bytes.size())));
    }

    // Positive even as a signed number.
    std::uint32_t NextNumber() { return ++m_number & 0x7fffffff; }

    // None of these may reach a listener: they cannot be parsed, or have another signature.
    void EmitNonsense(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            m_service.EmitBody("OnIpodBatteryChange", g_variant_new("(v)", g_variant_new_string("%s%n")));
            m_service.EmitBody("OnIpodPhoneCallChange", g_variant_new("(@v)", Variant("\xff\xff\xff", 3)));
            m_service.EmitBody("OnPlayProgressChange", g_variant_new("(s)", "another type"));
        }
    }

    void Scribble(int count)
    {
        static_assert(sizeof(QBXStringPageVector) == 4 * sizeof(std::size_t), "allocator, pointer, size, capacity");
        auto* const header = reinterpret_cast<volatile std::size_t*>(&m_vectors.scribbled) + 1;
        std::mt19937_64 engine(m_random());
        const auto random = [&] { return static_cast<std::size_t>(engine()); };
        for (int i = 0; i < count; ++i)
        {
            header[0] = random() % 2 == 0 ? random() : random() % (2 * kListSegmentSize);
            header[1] = random() % 2 == 0 ? random() : random() % 3000;
        }
        header[1] = 0;
    }

    Ledger& m_ledger;
    const int m_incarnation;
    Vectors m_vectors;
    std::mt19937 m_random{static_cast<unsigned>(m_incarnation)};
    std::atomic<std::uint32_t> m_number;
    std::atomic<int> m_errors{0};
    std::atomic<int> m_silences{0};
    std::atomic<int> m_nonsense{0};
    Parcel m_read;
    Parcel m_news;
    int m_emitted = 0;
    int m_flood = 0;
    mutable std::mutex m_mutex;
    std::map<std::string, int> m_callers;
    test::FakeService m_service;
};

// False at the end of standard input.
bool ReadLine(std::string& line)
{
    line.clear();
    for (char letter = 0; read(STDIN_FILENO, &letter, 1) == 1 && letter != '\n';) line += letter;
    return !line.empty();
}
}  // namespace

void RunService(Ledger& ledger, std::uint64_t incarnation)
{
    Service service(ledger, incarnation);
    std::puts("ready");
    std::fflush(stdout);
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    for (std::string line;;)
    {
        if (poll(&input, 1, kMillisecondsBetween) > 0)
        {
            if (!ReadLine(line)) return;
            service.Inject(line);
        }
        service.EmitWhatIsDue();
    }
}
}  // namespace soak
