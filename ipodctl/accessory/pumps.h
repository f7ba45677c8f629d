/// @file
/// Bytes between files and an accessory session, with back-pressure, inside the main loop.
#pragma once

#include <glib.h>
#include <ipodkit/accessory.h>

#include <functional>
#include <string>

namespace ctl
{
/// From a file to a session. Reads no more while the session has enough to send.
class InputPump
{
public:
    using Failed = std::function<void(const ipodkit::Error&)>;

    /// @param file   readable; stays the caller's
    /// @param ended  called at its end, or when it cannot be read
    InputPump(int file, ipodkit::AccessorySessionPtr peer, std::function<void()> ended, Failed failed);
    ~InputPump();
    InputPump(const InputPump&) = delete;
    InputPump& operator=(const InputPump&) = delete;

private:
    static gboolean OnReadable(gint, GIOCondition, gpointer data);
    void Watch();
    bool Read();
    bool Pass(ipodkit::Bytes bytes);

    const int m_file;
    const ipodkit::AccessorySessionPtr m_peer;
    const std::function<void()> m_ended;
    const Failed m_failed;
    ipodkit::Subscription m_drained;
    ipodkit::Bytes m_held;
    guint m_watch = 0;
};

/// From memory to a file. Keeps what the file does not take yet.
class OutputPump
{
public:
    /// @param closed  called when the file takes no more, with the reason: EPIPE when nobody reads it any more
    explicit OutputPump(std::function<void(int error)> closed) : m_closed(std::move(closed)) {}
    ~OutputPump() { Use(-1); }
    OutputPump(const OutputPump&) = delete;
    OutputPump& operator=(const OutputPump&) = delete;

    /// From now on this file; -1 for none. It stays the caller's.
    void Use(int file);

    void Add(const ipodkit::Bytes& bytes);

    /// Bytes that are still here.
    std::size_t Waiting() const { return m_bytes.size() - m_written; }

    /// Called each time that everything has been written.
    std::function<void()> onEmpty = [] {};

private:
    static gboolean OnWritable(gint, GIOCondition, gpointer data);
    void Watch();
    bool Write();

    const std::function<void(int error)> m_closed;
    int m_file = -1;
    std::string m_bytes;
    std::size_t m_written = 0;  ///< bytes at the front of m_bytes that have been written
    guint m_watch = 0;
};
}  // namespace ctl
