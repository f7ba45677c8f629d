/// @file
/// Reads the state from the service.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>

#include "commands/records.h"
#include "pictures/picture_cache.h"
#include "state/state_draft.h"

namespace ipodkit
{
/// Reads the fields that have a request into the draft. A field that the service refuses is unknown. A field that is
/// not answered within the deadline is unknown until its answer arrives: the request stays pending, and is repeated at
/// growing intervals in case the service lost it. Context thread only.
class StateReader : public std::enable_shared_from_this<StateReader>
{
public:
    struct Progress
    {
        Fields open;     ///< neither answered nor timed out
        bool answered;   ///< at least one of them was answered
        Fields missing;  ///< timed out
    };

    /// @p progressed is called after each answer, when the draft contains it.
    StateReader(GMainContext* context, std::shared_ptr<detail::Bus> bus, std::chrono::milliseconds deadline,
                StateDraft& draft, PictureCache& pictures, std::function<void()> progressed);

    /// Requests everything. Answers to earlier requests are ignored.
    void Start();

    /// Requests the given fields again, except those that only events report.
    void Refresh(Fields fields);

    /// Requests everything that depends on the device again, one pass at a time, however fast devices come and go.
    void ReadDevices();

    /// Requests the artwork of the playing track, one request at a time, however fast the tracks change.
    void ReadArtwork();

    /// Ignores pending answers, and sends no request until the next Start().
    void Stop();

    /// Returns whether Start() was called, and Stop() was not called since.
    bool Started() const { return m_started; }

    Progress Progressed() const { return {m_open.Without(m_missing), m_answered, m_missing}; }

private:
    template <class T>
    using Question = std::function<Request<T>()>;

    template <class T, class Take>
    void Ask(Field field, const Question<T>& question, const Take& take);
    template <class T, class Take>
    void Send(Field field, unsigned serial, const Question<T>& question, const Take& take);
    template <class T, class Set>
    void Read(Field field, Request<T> (Commands::*question)() const, const Set& set);
    template <class T>
    void Read(Field field, Request<T> (Commands::*question)() const, Known<T> PlayerState::*member);
    void Late(Field field, std::chrono::milliseconds wait, int attempts, const std::function<void()>& again);
    void Forget(Field field, const PlayerState& asked, Unknown why, const Error* cause = nullptr);
    void ReadAll(Fields fields = Fields::All());
    void Answered(Field field, unsigned serial);
    void TakeArtwork(const PictureHead& head, const PicturePtr& before);
    bool Settled() const { return m_open.Without(m_missing).Empty(); }

    const ContextPtr m_context;
    const std::shared_ptr<detail::Bus> m_bus;
    const std::chrono::milliseconds m_deadline;
    StateDraft& m_draft;
    PictureCache& m_pictures;
    const std::function<void()> m_progressed;
    std::map<Field, SourcePtr> m_timers;         // of pending requests
    std::shared_ptr<const PlayerState> m_asked;  // the draft when the last requests were sent
    std::map<Field, unsigned> m_last;            // number of the last request for each field
    unsigned m_round = 0;
    Fields m_open;     // not answered yet
    Fields m_missing;  // of these, those that timed out
    bool m_started = false;
    bool m_answered = false;         // at least one request was answered
    bool m_devicesChanged = false;   // while requests were pending
    bool m_artworkOutdated = false;  // while a request for it was pending
};
}  // namespace ipodkit
