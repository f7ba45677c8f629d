// Module state, the singleton, and the life cycle of the client.
//
// Everything that is constructed when the library is loaded is defined here, in the order in which it is needed: the
// streams, then Boost's page size, which the segments use, then the lock of the accessor.
#include <iostream>

#include "QBXIpod_MediaPlayer_Client.h"

#include <QBXIpodShareMemory.h>

#include <atomic>

#include "internal/QBXSingleton.h"
#include "internal/log.h"
#include "internal/module_state.h"
#include "internal/notify.h"

using qbx::clientCreated;
using Singleton = QBXSingleton<QBXIpod_MediaPlayer_Client>;

QBXSharedSegment segment_list_vector;
QBXSharedSegment segment_buffer_vector;

template <>
QBXIpod_MediaPlayer_Client* Singleton::ms_pSingleton = nullptr;
template <>
QBXCriticalSection Singleton::ms_cs{};

namespace qbx
{
int clientCreated = 0;
unsigned clientsBuilt = 0;
ComZarnLinuxIpod* serviceProxy = nullptr;

unsigned LivingClient()
{
    return Singleton::Get() == nullptr ? 0 : clientsBuilt;
}
}  // namespace qbx

namespace
{
std::atomic<bool> connectStartLogged{false};
}  // namespace

// The lock is acquired without a guard: if the constructor throws, it stays held, so that no other thread uses a
// half-attached player.
IQBXIpodPlayer* QBX_GetIpodPlayer()
{
    if (!connectStartLogged && !connectStartLogged.exchange(true))
        LOG_INFO("QBX_Dbus_Connect_Init(TunerService Lib):AppMgr Connect Start.");
    if (QBXIpod_MediaPlayer_Client* const player = Singleton::Get()) return player;
    Singleton::ms_cs.Lock();
    if (Singleton::Get() == nullptr) Singleton::Set(new QBXIpod_MediaPlayer_Client);
    Singleton::ms_cs.Unlock();
    return Singleton::Get();
}

void QBX_DestroyIpodPlayer()
{
    Singleton::ms_cs.Lock();
    delete Singleton::Get();
    Singleton::Set(nullptr);
    Singleton::ms_cs.Unlock();
}

QBXIpod_MediaPlayer_Client::QBXIpod_MediaPlayer_Client()
{
    clientCreated = 1;
    ++qbx::clientsBuilt;
    InitShareMemory();
}

QBXIpod_MediaPlayer_Client::~QBXIpod_MediaPlayer_Client()
{
    LOG_INFO("%s()", __func__);
}

bool QBXIpod_MediaPlayer_Client::InitInstance()
{
    LOG_INFO("%s()", __func__);
    InitShareMemory();
    return InitDBusConnect();
}

bool QBXIpod_MediaPlayer_Client::ExitInstance()
{
    LOG_INFO("%s()", __func__);
    return true;
}

void QBXIpod_MediaPlayer_Client::OnListenerRemoved(IQBXIpodPlayerListener* listener)
{
    ++qbx::listenersRemoved;
    IQBXIpodPlayer::OnListenerRemoved(listener);
}
