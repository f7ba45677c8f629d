/// @file
/// The browser: connects keys, service events, and the screen.
#pragma once

#include <glib.h>
#include <ipodkit/audio_source.h>

#include <deque>
#include <functional>
#include <memory>

#include "browse/model.h"
#include "browse/screen.h"
#include "browse/walker.h"
#include "output/failure.h"
#include "session/loop.h"

namespace ctl::browse
{
class Browser
{
public:
    Browser(ipodkit::Session& session, Screen& screen, const SuspendSignal& suspend);
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    /// Runs the main loop until the user quits, the terminal hangs up, or a termination signal arrives.
    /// @throws Failure  kServiceLost: the bus closed the connection
    void Run();

private:
    using Done = std::function<void(const ipodkit::Result<void>&)>;

    template <void (Browser::*step)()>
    static gboolean OnSource(gpointer browser);
    template <void (Browser::*step)()>
    static gboolean OnInput(gint, GIOCondition, gpointer browser);
    static gboolean OnPaint(gpointer browser);
    void AddSources();
    void Quit();
    void Resize();
    void Suspend();
    void Tick();
    void ReadKeys();
    void ProcessKeys();
    void Perform(const Action& action);
    void TogglePause();
    void Play(int entry);
    bool AcquireAudioSource();
    Done ReportFailure(const Refusal& refusal);
    void BeginWaiting();
    void EndWaiting();
    void ConnectionChanged(const ipodkit::Connection& connection);
    void Changed();
    void Paint();
    void ShowMessage(const std::string& message);

    ipodkit::Session& m_session;
    Screen& m_screen;
    const SuspendSignal& m_suspend;
    Model m_model;
    Frame m_shown;
    std::deque<KeyPress> m_keys;  // not processed yet
    unsigned m_painting = 0;      // the idle source that will paint; 0 if none is pending
    int m_unanswered = 0;
    std::optional<Time> m_waitingSince;  // start of the oldest unanswered command
    Loop m_loop;
    std::vector<unsigned> m_sources;
    std::shared_ptr<Browser*> m_self;  // expires with the browser, so late answers are dropped
    ipodkit::AudioSource m_audio;
    Walker m_walker;
    ipodkit::Subscription m_connection;
    ipodkit::Subscription m_state;
};
}  // namespace ctl::browse
