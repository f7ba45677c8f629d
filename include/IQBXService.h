/// @file
/// A service of the head unit: a listener itself, which forwards its events to a registry of listeners.
///
/// The order of the virtual operations is part of the published interface: append, never insert.
#pragma once

#include <IQBXListener.h>
#include <QBXMutex.h>

#include <cstdint>

/// A service that receives the events of @p T and passes them on to registered listeners.
template <class T>
class IQBXService : public T, public IQBXListener<T>
{
public:
    ~IQBXService() override { m_word = 0; }

    /// Connects to the service and returns whether it is reachable now; the implementation defines whether calls may be
    /// repeated.
    virtual bool InitInstance() = 0;

    /// Ends the use of the service; returns whether that succeeded.
    virtual bool ExitInstance() = 0;

    /// Called whenever a registration leaves exactly one listener.
    virtual void InitListener() {}

    /// Called whenever a removal leaves no listener.
    virtual void ExitListener() {}

    /// Calls InitListener() when exactly one listener is registered.
    void OnListenerAdded(T*) override
    {
        if (this->GetListenerCount() == 1) InitListener();
    }

    /// Calls ExitListener() when no listener is registered.
    void OnListenerRemoved(T*) override
    {
        if (this->GetListenerCount() == 0) ExitListener();
    }

private:
    // Unused, but kept to preserve the size of the object for existing binaries.
    std::int32_t m_word = 0;
    QBXMutex m_serviceLock;
};
