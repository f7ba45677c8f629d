#include "bus/bus_test.h"

#include "support/signal_barrier.h"

namespace test
{
void ClientTest::TearDown()
{
    for (const LogRecord& record : LogRecords())
    {
        EXPECT_EQ(record.file, "libipod/QBXIpod_MediaPlayer_Client");
        EXPECT_EQ(record.fileLength, record.file.size());
        EXPECT_EQ(record.functionLength, record.function.size());
        EXPECT_GT(record.line, 0);
    }
}

IQBXIpodPlayer& ServiceTest::Connected()
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    EXPECT_TRUE(player->InitInstance());
    ClearLog();
    return *player;
}

void ServiceTest::Deliver(const std::string& signal, const std::string& body)
{
    service.Emit(signal, body);
    EXPECT_TRUE(PassBarrier(service));
}

void ServiceTest::DeliverBody(const std::string& signal, GVariant* body)
{
    service.EmitBody(signal, body);
    EXPECT_TRUE(PassBarrier(service));
}

IQBXIpodPlayer& NoServiceTest::Unconnected()
{
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    EXPECT_FALSE(player->InitInstance());
    ClearLog();
    return *player;
}
}  // namespace test
