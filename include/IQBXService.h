/// @file
/// A service of the head unit: a listener itself, with a registry of the listeners to which it passes events on.
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

    /// Connects to the service; false when it cannot be reached now.
    virtual bool InitInstance() = 0;

    /// Ends the use of the service.
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
    // Neither is used any more; both keep the size of the object that applications were built against.
    std::int32_t m_word = 0;
    QBXMutex m_serviceLock;
};
