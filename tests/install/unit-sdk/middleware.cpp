// A substitute for the head unit's middleware: another implementation of the symbols that libipod.so leaves undefined.
#include <QBXLog.h>
#include <QBXMutex.h>
#include <QBXSource.h>

QBXMutex::QBXMutex() : m_mutex(PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP) {}
QBXMutex::~QBXMutex() = default;

void QBXMutex::Lock()
{
    pthread_mutex_lock(&m_mutex);
}

void QBXMutex::Unlock()
{
    pthread_mutex_unlock(&m_mutex);
}

int QBXSource::Request(int, AudioGainType)
{
    return 1;
}

bool QBXSource::IsActived(int)
{
    return false;
}

void QBXSource::Release(int, int) {}
void QBXSource::ActiveSourceConfirm(int, int) {}
void QBXSource::DeactiveSourceConfirm(int, int) {}

zlog_category_t* liblog_category = nullptr;

int QBX_LogInit(const char*)
{
    return 0;
}

void QBX_LogExit() {}
