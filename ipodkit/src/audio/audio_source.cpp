#include <ipodkit/audio_source.h>

#include <QBXSource.h>

#include <deque>

#include "loop/loop_operation.h"
#include "session/session_impl.h"

namespace ipodkit
{
namespace
{
constexpr std::size_t kTraceLength = 64;
constexpr int kFirstSource = 10;
constexpr int kReleaseReason = 1;

tl::unexpected<Error> Fail(ErrorKind kind, const std::string& reason)
{
    return tl::unexpected(Error{kind, reason});
}
}  // namespace

const char* Name(AudioState state)
{
    static constexpr const char* names[] = {"Released", "Granted", "Active", "Playing", "Suspended"};
    return names[static_cast<int>(state)];
}

class AudioSource::Impl : public std::enable_shared_from_this<AudioSource::Impl>
{
public:
    Impl(std::shared_ptr<Session::Impl> session, int number) : m_session(std::move(session)), m_number(number) {}

    Result<void> Request();
    void Activated(int confirmation);
    void Deactivated(int confirmation, bool forAWhile);
    ipodkit::Request<void> Play(PlayOption option);
    void Release();
    void ServiceLost();
    void KeepAlive()
    {
        Post(m_session->Context(), [self = shared_from_this()] {});
    }
    void Follow(const Event& event);

    AudioState State() const { return m_state; }
    const std::deque<AudioTransition>& Trace() const { return m_trace; }
    Registry<std::function<void(const AudioTransition&)>> callbacks;

private:
    int Source() const { return kFirstSource + m_number; }
    void Go(AudioState to, const std::string& why);
    void Start(const PendingPtr<void>& request, PlayOption option);
    void Started(const Result<void>& result);

    const std::shared_ptr<Session::Impl> m_session;
    const int m_number;
    AudioState m_state = AudioState::Released;
    std::deque<AudioTransition> m_trace;
};

void AudioSource::Impl::Go(AudioState to, const std::string& why)
{
    if (to == m_state) return;
    const AudioTransition transition{m_state, to, why};
    m_state = to;
    m_trace.push_back(transition);
    if (m_trace.size() > kTraceLength) m_trace.pop_front();
    callbacks.ForEach(m_session->CallbackGuard(), [&transition](const auto& callback) { callback(transition); });
}

Result<void> AudioSource::Impl::Request()
{
    if (m_number != 0 && m_number != 1)
        return Fail(ErrorKind::BadArgument, "source: expected 0 or 1, got " + std::to_string(m_number));
    IQBXIpodPlayer* const player = CoreLink::Instance().Player();
    if (player == nullptr) return Fail(ErrorKind::NoService, "the session was never ready");
    if (m_state != AudioState::Released) return {};
    const int code = player->Play(m_number == 0 ? IPOD_PLAY_REQUEST_SOURCE_0 : IPOD_PLAY_REQUEST_SOURCE_1, 0);
    if (code != 1 && code != 2)
        return Fail(ErrorKind::Refused, "the audio-source manager refused with code " + std::to_string(code));
    Go(AudioState::Granted, "granted");
    return {};
}

// Activations without a request are confirmed, too: the manager decides.
void AudioSource::Impl::Activated(int confirmation)
{
    if (CoreLink::Instance().Player() == nullptr) return;
    CoreLink::Instance().Player()->Play(IPOD_PLAY_CONFIRM_ACTIVE, confirmation);
    const bool resume = m_state == AudioState::Suspended;
    if (m_state == AudioState::Playing) return;
    Go(AudioState::Active, "activated");
    if (!resume) return;
    const auto report = [](const Result<void>& result)
    {
        if (!result) LogWarning("cannot resume interrupted playback: " + result.error().Text());
    };
    Play(PlayOption::Resume).Start(report);
}

void AudioSource::Impl::Deactivated(int confirmation, bool forAWhile)
{
    if (CoreLink::Instance().Player() == nullptr) return;
    CoreLink::Instance().Player()->Play(IPOD_PLAY_CONFIRM_DEACTIVE, confirmation);
    if (!forAWhile) return Go(AudioState::Released, "deactivated");
    const bool goesOn = m_state == AudioState::Playing || m_state == AudioState::Suspended;
    Go(goesOn ? AudioState::Suspended : AudioState::Granted, "temporarily deactivated");
}

ipodkit::Request<void> AudioSource::Impl::Play(PlayOption option)
{
    const auto begin = [weak = weak_from_this(), option](const PendingPtr<void>& request)
    {
        if (const auto self = weak.lock()) return self->Start(request, option);
        request->Settle(Fail(ErrorKind::Cancelled, "the audio source ended"));
    };
    return MakeLoopRequest<void>(m_session->Bus()->Requests(), "Play", {m_session->Options().deadline, std::nullopt},
                                 begin);
}

// The core's own start of playback would block; this repeats its conditions.
void AudioSource::Impl::Start(const PendingPtr<void>& request, PlayOption option)
{
    if (m_state == AudioState::Released || !QBXSource::IsActived(Source()))
        return request->Settle(Fail(ErrorKind::Refused, "the audio source is not active"));
    auto call = m_session->MakeCommands().StartPlayback(option).Within(*request->Terms().deadline);
    if (const auto& cancellation = request->Terms().cancellation) call = std::move(call).CancelledBy(*cancellation);
    std::move(call).Start(
        [weak = weak_from_this(), request](const Result<void>& result)
        {
            if (const auto self = weak.lock()) self->Started(result);
            request->Settle(result);
        });
}

// The manager may have deactivated the source while the request was under way.
void AudioSource::Impl::Started(const Result<void>& result)
{
    if (!result) return;
    if (m_state == AudioState::Granted && !QBXSource::IsActived(Source())) return Go(AudioState::Suspended, "played");
    if (m_state != AudioState::Released) Go(AudioState::Playing, "played");
}

void AudioSource::Impl::Release()
{
    if (m_state == AudioState::Released) return;
    QBXSource::Release(Source(), kReleaseReason);
    Go(AudioState::Released, "released");
}

void AudioSource::Impl::ServiceLost()
{
    if (m_state == AudioState::Playing) Go(AudioState::Active, "the service was lost");
    if (m_state == AudioState::Suspended) Go(AudioState::Granted, "the service was lost");
}

// The core does the same in an application that receives its events.
void AudioSource::Impl::Follow(const Event& event)
{
    const auto* const change = std::get_if<SourceValidChanged>(&event);
    if (change == nullptr || change->valid) return;
    if (QBXSource::IsActived(Source())) QBXSource::Release(Source(), kReleaseReason);
    Go(AudioState::Released, "the device's audio became invalid");
}

AudioSource::AudioSource(Session& session, int number)
    : m_impl(std::make_shared<Impl>(session.Inside(), number)),
      m_listening(session.OnEvent("audio source", [impl = m_impl](const Event& event) { impl->Follow(event); })),
      m_watching(session.OnConnection("audio source",
                                      [impl = m_impl](const Connection& connection)
                                      {
                                          if (connection.phase == Phase::Lost) impl->ServiceLost();
                                      }))
{
}

// One of its callbacks may destroy the source: the running callback is kept alive until it returns.
AudioSource::~AudioSource()
{
    m_listening.Reset();
    m_watching.Reset();
    m_impl->KeepAlive();
}

AudioState AudioSource::State() const
{
    return m_impl->State();
}

Result<void> AudioSource::Request()
{
    return m_impl->Request();
}

void AudioSource::Activated(int confirmation)
{
    m_impl->Activated(confirmation);
}

void AudioSource::Deactivated(int confirmation, bool forAWhile)
{
    m_impl->Deactivated(confirmation, forAWhile);
}

ipodkit::Request<void> AudioSource::Play(PlayOption option)
{
    return m_impl->Play(option);
}

void AudioSource::Release()
{
    m_impl->Release();
}

std::vector<AudioTransition> AudioSource::Trace() const
{
    return {m_impl->Trace().begin(), m_impl->Trace().end()};
}

Subscription AudioSource::OnTransition(std::string name, std::function<void(const AudioTransition&)> callback)
{
    return Subscription(m_impl->callbacks.Add(std::move(name), std::move(callback)));
}
}  // namespace ipodkit
