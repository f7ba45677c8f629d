// The reply buffers that the text readers copy into. This program replaces the generated calls to inspect the buffers.
#include <IQBXIpodPlayer.h>
#include <gtest/gtest.h>
#include <ipod_dbus.h>

namespace
{
char reply[] = "Phone";
}  // namespace

gboolean com_zarn_linux_ipod_call_get_ipod_name_sync(ComZarnLinuxIpod*, gchar** name, GCancellable*, GError**)
{
    *name = reply;
    return TRUE;
}

gboolean com_zarn_linux_ipod_call_get_ipod_app_bundle_name_sync(ComZarnLinuxIpod*, gchar** name, GCancellable*,
                                                                GError**)
{
    *name = reply;
    return TRUE;
}

gboolean com_zarn_linux_ipod_call_get_carplay_device_detect_status_sync(ComZarnLinuxIpod*, guchar*, gchar** serial,
                                                                        GCancellable*, GError**)
{
    *serial = reply;
    return TRUE;
}

namespace
{
struct Reader
{
    const char* name;
    void (*read)(std::string&);
};

void ReadCarplayStatus(std::string& text)
{
    auto status = APPLE_DEVICE_DETECTED;
    QBX_GetIpodPlayer()->GetCarplayDeviceDetectStatus(status, text);
}

const Reader kReaders[] = {
    {"GetIpodName", [](std::string& text) { QBX_GetIpodPlayer()->GetIpodName(text); }},
    {"GetIpodAPPBundleName", [](std::string& text) { QBX_GetIpodPlayer()->GetIpodAPPBundleName(text); }},
    {"GetCarplayDeviceDetectStatus", ReadCarplayStatus},
};

std::string NameOf(const testing::TestParamInfo<Reader>& row)
{
    return row.param.name;
}

class ReplyBufferTest : public testing::TestWithParam<Reader>
{
};

TEST_P(ReplyBufferTest, IsOverwrittenWithTheCallersText)
{
    std::string text = "abc";

    GetParam().read(text);

    EXPECT_STREQ(reply, "abcne");
    EXPECT_EQ(text, "abc");
}

TEST_P(ReplyBufferTest, IsUnchangedIfTheCallersTextIsEmpty)
{
    std::string text;

    GetParam().read(text);

    EXPECT_STREQ(reply, "Phone");
}

TEST_P(ReplyBufferTest, ReceivesAtMostTheLengthOfTheReply)
{
    std::string text = "a long text";

    GetParam().read(text);

    EXPECT_STREQ(reply, "a lon");
    EXPECT_EQ(text, "a long text");
}

INSTANTIATE_TEST_SUITE_P(All, ReplyBufferTest, testing::ValuesIn(kReaders), NameOf);
}  // namespace
