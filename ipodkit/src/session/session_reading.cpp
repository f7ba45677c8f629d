// From an owner to a state: the ping, the segments, the player, the questions, the picture.
#include <QBXIpodShareMemory.h>

#include "commands/requests.h"
#include "loop/context.h"
#include "memory/segment_probe.h"
#include "memory/shared_vectors.h"
#include "session/weak_session.h"

namespace ipodkit
{
// Whoever does not answer would block the core's InitInstance(), and with it this thread.
void Session::Impl::Ping()
{
    MakeCommands().PlayStatus().Start(
        [weak = weak_from_this(), generation = m_generation](const Result<iPodPlayerPlayStatus>& status)
        {
            const auto self = weak.lock();
            if (self == nullptr || !self->Present(generation)) return;
            if (status || status.error().kind != ErrorKind::TimedOut) return self->Answered();
            self->SetConnection(Phase::Connecting, status.error());
            self->Ping();
        });
}

void Session::Impl::Answered()
{
    if (CoreLink::Instance().Attached())
        Attached();
    else
        Probe();
}

// Waiting for locks and creators of shared memory is done on another thread.
void Session::Impl::Probe()
{
    const auto tell = [weak = weak_from_this(), generation = m_generation](const std::optional<Error>& error)
    {
        const auto self = weak.lock();
        if (self != nullptr && self->Present(generation)) self->Probed(error);
    };
    const std::shared_ptr<GMainContext> context(g_main_context_ref(m_context.get()), g_main_context_unref);
    RunAside([tell, context] { Post(context.get(), [tell, error = ProbeSegments()] { tell(error); }); });
}

void Session::Impl::Probed(const std::optional<Error>& error)
{
    const std::optional<Error> failure = error ? error : CoreLink::Instance().Attach();
    if (!failure) return Attached();
    SetConnection(Phase::Connecting, failure);
    RetryLater(&Impl::Probe);
}

void Session::Impl::Attached()
{
    if (!m_listening) CoreLink::Instance().Add(&m_queue);
    m_listening = true;
    if (CoreLink::Instance().Connect())
        ReadAll();
    else
        RetryLater(&Impl::Ping);
}

template <class T, class Apply>
void Session::Impl::Read(Request<T> request, Apply apply)
{
    ++m_reading;
    std::move(request).Start(
        [weak = weak_from_this(), generation = m_generation, apply](const Result<T>& result)
        {
            const auto self = weak.lock();
            if (self == nullptr || !self->Present(generation)) return;
            self->Replay();
            if (result) std::invoke(apply, self->m_draft, *result);
            self->m_publisher->Touch();
            self->ReadEnded();
        });
}

// What the service refuses stays unknown.
void Session::Impl::ReadAll()
{
    const ipodkit::Commands commands = MakeCommands();
    Read(commands.CurrentTrack(), &StateDraft::SetTrack);
    Read(commands.PlayingIndex(), &StateDraft::SetTrackIndex);
    Read(commands.PlayStatus(), &StateDraft::SetStatus);
    Read(commands.Position(), &StateDraft::SetPosition);
    Read(commands.Shuffle(), &StateDraft::SetShuffle);
    Read(commands.Repeat(), &StateDraft::SetRepeat);
    Read(commands.PlayingCount(), &StateDraft::SetQueueSize);
    Read(commands.DeviceCount(), &StateDraft::SetDeviceCount);
    Read(commands.IpodName(), &StateDraft::SetDeviceName);
    Read(commands.ForegroundApp(), &StateDraft::SetForegroundApp);
    Read(commands.CarPlayStatus(), &StateDraft::SetCarPlay);
    Read(commands.CarLifeStatus(), &StateDraft::SetCarLife);
    Read(AskForArtwork(m_bus, m_options.deadline), [this](StateDraft&, const PictureHead& head) { TakeArtwork(head); });
}

void Session::Impl::ReadEnded()
{
    if (--m_reading > 0) return;
    if (CurrentConnection().phase != Phase::Ready)
    {
        SetConnection(Phase::Ready);
        m_publisher->GoLive(m_generation);
    }
    if (std::exchange(m_devicesChanged, false)) ReadDevices();
}

// No event tells which device came or went, what it is called, and which of the others is played now. Asked for one
// round at a time, however fast they come and go; while there is no state yet, all of it is still to be asked for.
void Session::Impl::DevicesChanged()
{
    m_devicesChanged = m_reading > 0;
    if (m_reading == 0 && CurrentConnection().phase == Phase::Ready) ReadDevices();
}

// Without a device there is nothing more to ask for, and what was said of one meanwhile does not count.
void Session::Impl::ReadDevices()
{
    Read(MakeCommands().DeviceCount(),
         [this](StateDraft& draft, int count)
         {
             draft.SetDeviceCount(count);
             if (count > 0)
                 ReadAll();
             else
                 draft.ForgetDevice();
         });
}

// A track that came without a picture may have one all the same. Ready has just read it.
void Session::Impl::Published(Fields changed)
{
    const bool fresh = changed.Has(Field::Track) && !changed.Has(Field::Connection);
    if (fresh && m_draft.State().track && m_draft.State().artwork == nullptr) FetchArtwork();
}

// One at a time, however fast the tracks change.
void Session::Impl::FetchArtwork()
{
    m_artworkOutdated = m_fetchingArtwork;
    if (m_fetchingArtwork) return;
    m_fetchingArtwork = true;
    AskForArtwork(m_bus, m_options.deadline)
        .Start(
            [weak = weak_from_this(), generation = m_generation](const Result<PictureHead>& head)
            {
                const auto self = weak.lock();
                if (self == nullptr) return;
                self->m_fetchingArtwork = false;
                if (self->Present(generation)) self->ArtworkArrived(head);
            });
}

void Session::Impl::ArtworkArrived(const Result<PictureHead>& head)
{
    Replay();
    if (m_artworkOutdated) return FetchArtwork();
    if (head) TakeArtwork(*head);
    m_publisher->Touch();
}

// What an event has brought stays: it was the picture of this track.
void Session::Impl::TakeArtwork(const PictureHead& head)
{
    if (m_draft.State().artwork != nullptr) return;
    auto bytes = head[0] == 0 ? BytesIn(g_VecArtworkBufferShareMemory) : std::nullopt;
    m_draft.SetArtwork(bytes ? m_pictures.Put(std::move(*bytes)) : nullptr);
}
}  // namespace ipodkit
