// Stand-in for the audio-source manager: grants requests and tracks the active source.
#include <QBXSource.h>
#include <QBXSourceControl.h>

#include <atomic>
#include <cstdlib>

namespace
{
constexpr int kGranted = 1;
constexpr int kNoSource = -1;

int RefusalFromEnvironment()
{
    const char* code = std::getenv("QBX_SOURCE_REFUSE");
    return code == nullptr ? 0 : std::atoi(code);
}

std::atomic<int> active{kNoSource};
std::atomic<int> refusal{RefusalFromEnvironment()};
}  // namespace

void QBXSourceRefuse(int code)
{
    refusal = code;
}

int QBXSource::Request(int source, AudioGainType)
{
    if (refusal != 0) return refusal;
    active = source;
    return kGranted;
}

bool QBXSource::IsActived(int source)
{
    return active == source;
}

void QBXSource::Release(int source, int)
{
    active.compare_exchange_strong(source, kNoSource);
}

void QBXSource::ActiveSourceConfirm(int, int) {}

void QBXSource::DeactiveSourceConfirm(int, int) {}
