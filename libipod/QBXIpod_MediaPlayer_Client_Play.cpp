// Play: the only command that involves the head unit's audio-source manager.
#include <QBXSource.h>

#include <atomic>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/call.h"
#include "source_names.h"

using qbx::kSourceIpod0;
using qbx::kSourceIpod1;
using qbx::SourceName;

namespace
{
constexpr auto kGain = static_cast<QBXSource::AudioGainType>(0);

// The source granted last; kept after its release.
std::atomic<int> currentIpodSource{0};

bool RequestsSource(int option)
{
    return option == IPOD_PLAY_REQUEST_SOURCE_0 || option == IPOD_PLAY_REQUEST_SOURCE_1;
}

int SourceFor(int option)
{
    if (option == IPOD_PLAY_REQUEST_SOURCE_0) return kSourceIpod0;
    if (option == IPOD_PLAY_REQUEST_SOURCE_1) return kSourceIpod1;
    return currentIpodSource;
}

bool IsGranted(int code)
{
    return code == 1 || code == 2;
}

// False for every other option. Both confirmations name the first iPod source, even if the second one is current.
bool PassConfirmationOn(int option, int confirmArg)
{
    if (option == IPOD_PLAY_CONFIRM_ACTIVE)
        QBXSource::ActiveSourceConfirm(kSourceIpod0, confirmArg);
    else if (option == IPOD_PLAY_CONFIRM_DEACTIVE)
        QBXSource::DeactiveSourceConfirm(kSourceIpod0, confirmArg);
    else
        return false;
    return true;
}
}  // namespace

int QBXIpod_MediaPlayer_Client::Play(iPodPlayerPlayOption_e option, int confirmArg)
{
    if (!qbx::clientCreated) return 0;
    LOG_INFO("QBXIpod_MediaPlayer_Client::Play(devID:%d).", option);
    if (PassConfirmationOn(option, confirmArg)) return 1;
    int bRet = 0;
    if (option < IPOD_PLAY_REQUEST_SOURCE_0 || option > IPOD_PLAY_RESTART)
    {
        LOG_ERROR("Unknow type");
        return bRet;
    }
    const int source = SourceFor(option);
    if (source != kSourceIpod0 && source != kSourceIpod1) return bRet;
    const int bReqSrc = RequestsSource(option) ? 1 : 0;
    LOG_INFO("QBXIpod_MediaPlayer_Client::Play() -- source %s, bReqSrc = %d.", SourceName(source), bReqSrc);
    if (bReqSrc)
    {
        bRet = QBXSource::Request(source, kGain);
        if (IsGranted(bRet))
        {
            LOG_INFO(" Request source success");
            currentIpodSource = source;
        }
        else
            LOG_ERROR("Play() - Request source %s failed!", SourceName(source));
    }
    else if (QBXSource::IsActived(source))
        qbx::Call(SYNC(com_zarn_linux_ipod_call_play_sync), static_cast<guchar>(option), &bRet);
    else
        LOG_INFO("Play() - source %s inactived!", SourceName(source));
    LOG_INFO("QBXIpod_MediaPlayer_Client::Play-bRet=%d", bRet);
    return bRet;
}
