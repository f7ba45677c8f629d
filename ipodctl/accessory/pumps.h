/// @file
/// Copies bytes between files and an accessory session in the main loop, with back-pressure.
#pragma once

#include <glib.h>
#include <ipodkit/accessory.h>

#include <functional>
#include <string>

namespace ctl
{
/// Copies bytes from a file to a session. Stops reading while the session's queue is full.
class InputPump
{
public:
    using Failed = std::function<void(const ipodkit::Error&)>;

    /// @param file   readable descriptor; the caller keeps ownership
    /// @param ended  called at end of file or on a read error
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

/// Writes bytes from memory to a file. Buffers what the file does not accept yet.
class OutputPump
{
public:
    /// @param closed  called on a write error with its errno; EPIPE if the reader has closed the file
    explicit OutputPump(std::function<void(int error)> closed) : m_closed(std::move(closed)) {}
    ~OutputPump() { Use(-1); }
    OutputPump(const OutputPump&) = delete;
    OutputPump& operator=(const OutputPump&) = delete;

    /// Writes to @p file from now on; -1 for none. The caller keeps ownership.
    void Use(int file);

    void Add(const ipodkit::Bytes& bytes);

    /// Returns the number of bytes that are not written yet.
    std::size_t Waiting() const { return m_bytes.size() - m_written; }

    /// Called each time the buffer becomes empty.
    std::function<void()> onEmpty = [] {};

private:
    static gboolean OnWritable(gint, GIOCondition, gpointer data);
    void Watch();
    bool Write();

    const std::function<void(int error)> m_closed;
    int m_file = -1;
    std::string m_bytes;
    std::size_t m_written = 0;  ///< bytes at the front of m_bytes that are already written
    guint m_watch = 0;
};
}  // namespace ctl
