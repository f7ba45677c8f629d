// The playing track's details and artwork. The fixed part arrives in the reply or signal, the image in shared memory.
#include <QBXIpodShareMemory.h>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/call.h"
#include "internal/notify.h"
#include "internal/records.h"
#include "internal/segments.h"
#include "signal_callbacks.h"

using qbx::clientCreated;

namespace
{
// Decodes and releases the reply, which is null after a failed call.
template <class Record>
Record TakeRecord(GVariant* reply)
{
    const auto record = qbx::DecodeRecord<Record>(reply);
    if (reply != nullptr) g_variant_unref(reply);
    return record;
}

std::vector<unsigned char> ImageIn(const QBXByteVector* vector)
{
    return qbx::CopyBytes(qbx::TakeSnapshot(vector, qbx::BoundsOf(vector, qbx::bufferMapping)));
}
}  // namespace

// The only query that does not check whether a client exists.
QBXiPodTrackInfo QBXIpod_MediaPlayer_Client::GetCurrentMediaInfo()
{
    GVariant* reply = nullptr;
    qbx::CallAndRelease(SYNC(com_zarn_linux_ipod_call_get_current_media_info_sync), &reply);
    return qbx::ToTrackInfo(TakeRecord<qbx::TrackRecord>(reply));
}

QBXTrackArtwork QBXIpod_MediaPlayer_Client::GetPlayingTrackAlbumArtwork()
{
    if (!clientCreated) return {1, 0, 0, 0, {}};
    GVariant* reply = nullptr;
    qbx::CallAndRelease(SYNC(com_zarn_linux_ipod_call_get_playing_track_album_artwork_sync), &reply);
    QBXTrackArtwork artwork = qbx::ToArtwork(TakeRecord<qbx::ArtworkHead>(reply));
    artwork.image = ImageIn(g_VecArtworkBufferShareMemory);
    return artwork;
}

void QBXIpod_MediaPlayer_Client::OnIpodArtworkChange(QBXTrackArtwork artwork)
{
    LOG_INFO("OnIpodArtworkChange()");
    if (!clientCreated) return;
    qbx::Notify(*this, &IQBXIpodPlayerListener::OnIpodArtworkChange, artwork);
}

namespace qbx
{
gboolean CallBack_OnIpodArtworkChange(ComZarnLinuxIpod* proxy, GVariant* artwork, gpointer client)
{
    QBXTrackArtwork decoded = ToArtwork(DecodeRecord<ArtworkHead>(artwork));
    decoded.image = ImageIn(g_VecArtworkChangeBufferShareMemory);
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnIpodArtworkChange, std::move(decoded));
}
}  // namespace qbx
