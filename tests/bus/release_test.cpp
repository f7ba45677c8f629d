// The queries of records and lists release their replies and errors. This program replaces the generated calls.
#include <IQBXIpodPlayer.h>
#include <gtest/gtest.h>
#include <ipod_dbus.h>

#include "bus/replaced_release.h"

namespace
{
bool fails = false;
int repliesReleased = 0;

// A "v" around an "ay" of two bytes that reports when its last reference is dropped.
GVariant* Reply()
{
    alignas(8) static const char serialized[] = "\x01\x02\0ay";
    return g_variant_ref_sink(g_variant_new_from_data(
        G_VARIANT_TYPE_VARIANT, serialized, sizeof(serialized) - 1, TRUE, [](gpointer) { ++repliesReleased; },
        nullptr));
}

gboolean Answer(GVariant** reply, GError** error)
{
    if (fails)
        *error = g_error_new_literal(G_IO_ERROR, G_IO_ERROR_FAILED, "no reply");
    else if (reply != nullptr)
        *reply = Reply();
    return fails ? FALSE : TRUE;
}
}  // namespace

gboolean com_zarn_linux_ipod_call_get_current_media_info_sync(ComZarnLinuxIpod*, GVariant** result, GCancellable*,
                                                              GError** error)
{
    return Answer(result, error);
}

gboolean com_zarn_linux_ipod_call_get_playing_track_album_artwork_sync(ComZarnLinuxIpod*, GVariant** result,
                                                                       GCancellable*, GError** error)
{
    return Answer(result, error);
}

gboolean com_zarn_linux_ipod_call_get_device_list_sync(ComZarnLinuxIpod*, gboolean*, GCancellable*, GError** error)
{
    return Answer(nullptr, error);
}

namespace
{
struct Query
{
    const char* name;
    void (*make)(IQBXIpodPlayer&);
    int replies;
};

const Query kQueries[] = {
    {"GetCurrentMediaInfo", [](IQBXIpodPlayer& player) { player.GetCurrentMediaInfo(); }, 1},
    {"GetPlayingTrackAlbumArtwork", [](IQBXIpodPlayer& player) { player.GetPlayingTrackAlbumArtwork(); }, 1},
    {"GetDeviceList",
     [](IQBXIpodPlayer& player)
     {
         std::vector<std::string> list;
         player.GetDeviceList(list);
     },
     0},
};

std::string NameOfQuery(const testing::TestParamInfo<Query>& row)
{
    return row.param.name;
}

class ReleaseTest : public testing::TestWithParam<Query>
{
};

TEST_P(ReleaseTest, ReleasesTheReply)
{
    GetParam().make(*QBX_GetIpodPlayer());

    EXPECT_EQ(repliesReleased, GetParam().replies);
}

TEST_P(ReleaseTest, ReleasesTheError)
{
    fails = true;

    GetParam().make(*QBX_GetIpodPlayer());

    EXPECT_EQ(test::errorsReleased, 1);
}

INSTANTIATE_TEST_SUITE_P(All, ReleaseTest, testing::ValuesIn(kQueries), NameOfQuery);
}  // namespace
