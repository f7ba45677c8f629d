#include "accessory/pumps.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <thread>

using ctl::OutputPump;

namespace
{
/// A pipe that a thread drains until the write end is closed.
class DrainedPipe
{
public:
    DrainedPipe()
    {
        EXPECT_EQ(pipe(m_ends), 0);
        m_reader = std::thread(
            [this]
            {
                char block[65536];
                for (ssize_t got = 1; got > 0;)
                {
                    got = read(m_ends[0], block, sizeof(block));
                    if (got > 0) m_received.append(block, static_cast<std::size_t>(got));
                }
            });
    }
    ~DrainedPipe() { close(m_ends[0]); }
    DrainedPipe(const DrainedPipe&) = delete;
    DrainedPipe& operator=(const DrainedPipe&) = delete;

    int WritingEnd() const { return m_ends[1]; }
    std::string Received()
    {
        close(m_ends[1]);
        m_reader.join();
        return m_received;
    }

private:
    int m_ends[2]{};
    std::string m_received;
    std::thread m_reader;
};

ipodkit::Bytes Numbered(std::size_t count)
{
    ipodkit::Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(i * 31 >> 8);
    return bytes;
}

double ProcessorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void RunUntilEmpty(OutputPump& pump)
{
    while (pump.Waiting() > 0) g_main_context_iteration(nullptr, TRUE);
}
}  // namespace

TEST(OutputPump, WritesAllBytesInTheirOrder)
{
    DrainedPipe pipe;
    OutputPump pump([](int) { FAIL(); });
    int emptied = 0;
    pump.onEmpty = [&] { ++emptied; };
    pump.Use(pipe.WritingEnd());
    const ipodkit::Bytes bytes = Numbered(200001);
    pump.Add({bytes.begin(), bytes.begin() + 5000});
    g_main_context_iteration(nullptr, TRUE);
    EXPECT_LT(pump.Waiting(), 5000U);
    pump.Add({bytes.begin() + 5000, bytes.end()});
    RunUntilEmpty(pump);
    EXPECT_EQ(emptied, 1);
    pump.Use(-1);
    EXPECT_EQ(pipe.Received(), std::string(bytes.begin(), bytes.end()));
}

TEST(OutputPump, TakesNoLongerPerByteWhenMoreAreWaiting)
{
    DrainedPipe pipe;
    OutputPump pump([](int) { FAIL(); });
    pump.Use(pipe.WritingEnd());
    pump.Add(ipodkit::Bytes(std::size_t{48} << 20));
    const double before = ProcessorSeconds();
    RunUntilEmpty(pump);
    EXPECT_LT(ProcessorSeconds() - before, 3);
    pump.Use(-1);
    EXPECT_EQ(pipe.Received().size(), std::size_t{48} << 20);
}
