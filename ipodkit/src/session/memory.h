/// @file
/// Values that only events report, from the companion daemon.
#pragma once

#include <ipodkit/event.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "loop/glib_ptr.h"
#include "state/state_draft.h"

namespace ipodkit
{
/// Asks the companion daemon for the values that events reported before this session appeared. Never starts the
/// daemon. Without it, or if it follows another service, there is no answer. Context thread only.
class Memory : public std::enable_shared_from_this<Memory>
{
public:
    /// @p recalled is called at most once for each Ask(), with a state of which PlayerState::remembered is to be used.
    Memory(GMainContext* context, std::function<void(const PlayerState&)> recalled);

    /// The connection to use. It stays valid until the next one.
    void Connected(GDBusConnection* connection);

    /// @p service  unique name of the service that the session follows
    void Ask(const std::string& service);

    /// Events that arrive before the answer are applied to it: they may be newer.
    void Follow(const Event& event);

    /// Ignores the answer.
    void Stop();

private:
    static void OnAnswer(GObject* connection, GAsyncResult* result, gpointer data);
    void Recall(GVariant* properties);

    const ContextPtr m_context;
    const std::function<void(const PlayerState&)> m_recalled;
    ConnectionPtr m_connection;
    std::unique_ptr<GCancellable, ObjectUnref> m_asking;  // null: no answer is awaited
    std::string m_service;
    std::vector<Event> m_events;  // since Ask()
};
}  // namespace ipodkit
