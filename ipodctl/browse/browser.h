/// @file
/// The browser: brings together the user's keys, the service's answers and events, and the screen.
#pragma once

#include <glib.h>
#include <ipodkit/audio_source.h>

#include <deque>
#include <exception>
#include <functional>
#include <memory>

#include "browse/model.h"
#include "browse/screen.h"
#include "browse/walker.h"
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

    /// Until the user quits, the terminal goes away or the program is asked to terminate.
    /// @throws Failure  kServiceLost: the bus went away
    void Run();

private:
    using Done = std::function<void(const ipodkit::Result<void>&)>;

    template <void (Browser::*step)()>
    static gboolean OnSource(gpointer browser);
    template <void (Browser::*step)()>
    static gboolean OnInput(gint, GIOCondition, gpointer browser);
    static gboolean OnPaint(gpointer browser);
    void AddSources();
    void Guard(const std::function<void()>& function);
    void Quit();
    void Resize();
    void Suspend();
    void Tick();
    void ReadKeys();
    void FollowKeys();
    void Fulfil(const Wish& wish);
    void TogglePause();
    void Play(int entry);
    bool TakeAudioSource();
    Done Report(const char* refusal);
    void BeginWaiting();
    void EndWaiting();
    void ConnectionIs(const ipodkit::Connection& connection);
    void Changed();
    void Paint();
    void Say(const std::string& message);

    ipodkit::Session& m_session;
    Screen& m_screen;
    const SuspendSignal& m_suspend;
    Model m_model;
    Frame m_shown;
    std::deque<KeyPress> m_keys;  // typed ahead
    unsigned m_painting = 0;      // the source that will paint, when there is something new
    std::exception_ptr m_thrown;
    int m_unanswered = 0;
    std::optional<Time> m_askedAt;  // the first of those
    GMainLoop* m_loop;
    std::vector<unsigned> m_sources;
    std::shared_ptr<Browser*> m_self;  // for answers that come when it is gone
    ipodkit::AudioSource m_audio;
    Walker m_walker;
    ipodkit::Subscription m_connection;
    ipodkit::Subscription m_state;
};
}  // namespace ctl::browse
