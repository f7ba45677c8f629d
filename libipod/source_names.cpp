#include "source_names.h"

namespace qbx
{
namespace
{
// Indexed by the source number, which the audio-source manager defines.
constexpr const char* kNames[] = {
    "SID_NONE",
    "SID_TUNER",
    "SID_DISC",
    "SID_AUX_0",
    "SID_AUX_1",
    "SID_VR",
    "SID_RVC",
    "SID_PHONE",
    "SID_KUVO_LINK",
    "SID_BT_MUSIC",
    "SID_IPOD_0",
    "SID_IPOD_1",
    "SID_ASR_RECORD",
    "SID_SYS_PROMPT",
    "SID_SD_0",
    "SID_SD_1",
    "SID_USB_0",
    "SID_USB_1",
    "SID_TTS_SMS",
    "SID_TTS_TEXT",
    "SID_NAVI",
    "SID_RINGTONE",
    "SID_STREAMING",
    "SID_PHONE_PRIVACY",
    "SID_QQ_MUSIC",
    "SID_CAR_PLAY_MEDIA",
    "SID_CAR_PLAY_SIRI",
    "SID_CAR_PLAY_NAVI",
    "SID_CAR_PLAY_PHONE",
    "SID_CAR_PLAY_RINGTONE",
    "SID_ANDROID_AUTO_MEDIA",
    "SID_ANDROID_AUTO_NAVI_DUCK",
    "SID_ANDROID_AUTO_NAVI_TRANSIENT",
    "SID_ANDROID_AUTO_ASR",
    "SID_CARLIFE_MEDIA",
    "SID_CARLIFE_NAVI",
    "SID_CARLIFE_PROMPT",
    "SID_CARLIFE_ASR",
    "SID_BOX_PHONE",
    "SID_TUNER_TA_PTY",
    "SID_CAR_PLAY_TRANSIENTS",
    "SID_CAR_PLAY_MIX",
    "SID_ANDROID_MIX",
    "SID_ISDB",
    "SID_VIDEOIN",
};
constexpr int kNameCount = sizeof(kNames) / sizeof(kNames[0]);
static_assert(kNameCount == 45, "sources are numbered from 0 to 44");
}  // namespace

const char* SourceName(int source)
{
    return source >= 0 && source < kNameCount ? kNames[source] : "SID_UNKNOWN";
}
}  // namespace qbx
