/// @file
/// Reads from the companion daemon the values that only events report.
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
/// Requests from the companion daemon the values that events reported before this session started. Never starts the
/// daemon. If it is not running or follows another service, the callback is not called. Context thread only.
class Memory : public std::enable_shared_from_this<Memory>
{
public:
    /// @param recalled  called at most once per Ask(), with a state whose fields in PlayerState::remembered are valid
    Memory(GMainContext* context, std::function<void(const PlayerState&)> recalled);

    /// Sets the connection to use, and keeps a reference to it.
    void Connected(GDBusConnection* connection);

    /// Sends the request. Ignores the answer to an earlier one.
    /// @param service  unique name of the service that the session follows
    void Ask(const std::string& service);

    /// Records an event. Events that arrive before the answer are applied to it, as they may be newer.
    void Follow(const Event& event);

    /// Ignores the answer.
    void Stop();

private:
    static void OnAnswer(GObject* connection, GAsyncResult* result, gpointer data);
    void Recall(GVariant* properties);

    const ContextPtr m_context;
    const std::function<void(const PlayerState&)> m_recalled;
    ConnectionPtr m_connection;
    std::unique_ptr<GCancellable, Releaser<g_object_unref>> m_asking;  // null if no answer is awaited
    std::string m_service;
    std::vector<Event> m_events;  // since Ask()
};
}  // namespace ipodkit
