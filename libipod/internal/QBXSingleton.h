/// @file
/// Holder of the one object of a class.
#pragma once

#include <QBXMutex.h>

template <class T>
class QBXSingleton
{
public:
    static T* ms_pSingleton;
    static QBXCriticalSection ms_cs;  ///< guards creation and destruction

    /// The object, complete, or null. Needs no lock; the pointer stays a plain one because it is exported.
    static T* Get() { return __atomic_load_n(&ms_pSingleton, __ATOMIC_ACQUIRE); }
    static void Set(T* object) { __atomic_store_n(&ms_pSingleton, object, __ATOMIC_RELEASE); }
};
