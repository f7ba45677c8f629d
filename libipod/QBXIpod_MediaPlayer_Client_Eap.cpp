// External Accessory sessions. Payloads pass through the write and read buffers in shared memory; the bus carries only
// the session number.
#include <QBXIpodShareMemory.h>
#include <gvariant_data.h>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/call.h"
#include "internal/notify.h"
#include "internal/records.h"
#include "internal/segments.h"
#include "signal_callbacks.h"

using qbx::clientCreated;
using Listener = IQBXIpodPlayerListener;

void QBXIpod_MediaPlayer_Client::EapInit(EAPInfo info)
{
    if (!clientCreated) return;
    qbx::EapInitRecord record = qbx::ToEapInitRecord(info);
    qbx::Call(SYNC(com_zarn_linux_ipod_call_eap_init_sync), gvariant_data_build(&record, sizeof(record)));
}

int QBXIpod_MediaPlayer_Client::EapLaunchApp(std::string& AppBundleID)
{
    if (!clientCreated) return 0;
    return qbx::Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_eap_launch_app_sync), FALSE, AppBundleID.c_str());
}

int QBXIpod_MediaPlayer_Client::EapWrite(unsigned short SessionID, std::vector<unsigned char>& data)
{
    if (!clientCreated) return 0;
    auto* const buffer = g_VecEapWriteBufferShareMemory;
    qbx::Replace(buffer, qbx::BoundsOf(buffer, qbx::bufferMapping), data);
    return qbx::Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_eap_write_sync), FALSE, SessionID);
}

void QBXIpod_MediaPlayer_Client::OnIpodStartEapSession(unsigned char protocol, unsigned short session)
{
    LOG_INFO("OnIpodStartEapSession() - protocol:%d, session:%d", protocol, session);
    if (!clientCreated) return;
    qbx::Notify(*this, &Listener::OnIpodStartEapSession, protocol, session);
}

// The next two messages name other operations than those that log them; log filters rely on it.
void QBXIpod_MediaPlayer_Client::OnIpodStopEapSession(unsigned short session)
{
    LOG_INFO("OnIpodEapCloseSession() - session:%d", session);
    if (!clientCreated) return;
    qbx::Notify(*this, &Listener::OnIpodStopEapSession, session);
}

void QBXIpod_MediaPlayer_Client::OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data)
{
    LOG_INFO("OnIpodEapReceiveData() - session:%d", session);
    if (!clientCreated) return;
    qbx::Notify(*this, &Listener::OnIpodReceiveEapData, session, data);
}

namespace qbx
{
gboolean CallBack_OnIpodReceiveEapData(ComZarnLinuxIpod* proxy, guchar session, gpointer client)
{
    const auto* const buffer = g_VecEapReadBufferShareMemory;
    std::vector<unsigned char> data = CopyBytes(TakeSnapshot(buffer, BoundsOf(buffer, bufferMapping)));
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnIpodReceiveEapData, session, data);
}
}  // namespace qbx
