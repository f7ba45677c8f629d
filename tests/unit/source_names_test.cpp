// Names of the audio sources in log lines.
#include "source_names.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>

namespace
{
constexpr char kExpected[] =
    "SID_NONE SID_TUNER SID_DISC SID_AUX_0 SID_AUX_1 SID_VR SID_RVC SID_PHONE SID_KUVO_LINK SID_BT_MUSIC "
    "SID_IPOD_0 SID_IPOD_1 SID_ASR_RECORD SID_SYS_PROMPT SID_SD_0 SID_SD_1 SID_USB_0 SID_USB_1 SID_TTS_SMS "
    "SID_TTS_TEXT SID_NAVI SID_RINGTONE SID_STREAMING SID_PHONE_PRIVACY SID_QQ_MUSIC SID_CAR_PLAY_MEDIA "
    "SID_CAR_PLAY_SIRI SID_CAR_PLAY_NAVI SID_CAR_PLAY_PHONE SID_CAR_PLAY_RINGTONE SID_ANDROID_AUTO_MEDIA "
    "SID_ANDROID_AUTO_NAVI_DUCK SID_ANDROID_AUTO_NAVI_TRANSIENT SID_ANDROID_AUTO_ASR SID_CARLIFE_MEDIA "
    "SID_CARLIFE_NAVI SID_CARLIFE_PROMPT SID_CARLIFE_ASR SID_BOX_PHONE SID_TUNER_TA_PTY SID_CAR_PLAY_TRANSIENTS "
    "SID_CAR_PLAY_MIX SID_ANDROID_MIX SID_ISDB SID_VIDEOIN";
}  // namespace

TEST(SourceName, IsDefinedForEachOfThe45Sources)
{
    std::istringstream names(kExpected);
    int source = 0;
    for (std::string name; names >> name; ++source) EXPECT_EQ(name, qbx::SourceName(source));
    EXPECT_EQ(45, source);
}

TEST(SourceName, IsUnknownForEveryOtherNumber)
{
    for (const int source : {-1, 45, 46, 255, INT_MIN, INT_MAX})
        EXPECT_STREQ("SID_UNKNOWN", qbx::SourceName(source)) << source;
}

TEST(SourceName, NamesTheTwoIpodSources)
{
    EXPECT_STREQ("SID_IPOD_0", qbx::SourceName(qbx::kSourceIpod0));
    EXPECT_STREQ("SID_IPOD_1", qbx::SourceName(qbx::kSourceIpod1));
}
