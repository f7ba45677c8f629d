/// @file
/// Holder of a class's single object.
#pragma once

#include <QBXMutex.h>

template <class T>
class QBXSingleton
{
public:
    static T* ms_pSingleton;
    static QBXCriticalSection ms_cs;  ///< guards creation and destruction

    /// The fully constructed object, or null. Needs no lock. It is a plain pointer because it is exported.
    static T* Get() { return __atomic_load_n(&ms_pSingleton, __ATOMIC_ACQUIRE); }
    static void Set(T* object) { __atomic_store_n(&ms_pSingleton, object, __ATOMIC_RELEASE); }
};
