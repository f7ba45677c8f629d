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
};
