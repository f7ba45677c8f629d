#include <map>

#include "accessory/accessory_session.h"
#include "loop/context.h"
#include "memory/shared_vectors.h"

namespace ipodkit
{
std::size_t RoomForAccessoryBytes()
{
    return RoomToWrite(g_VecEapWriteBufferShareMemory);
}

/// Mirrors the sessions of the state, which knows which ones are open.
class AccessoryPort::Impl : public std::enable_shared_from_this<AccessoryPort::Impl>
{
public:
    Impl(std::shared_ptr<Session::Impl> session, const AccessoryOptions& options)
        : m_session(std::move(session)), m_options(options)
    {
        for (const auto& [number, protocol] : Open()) Add(number, protocol);
    }

    void Watch()
    {
        m_ending = Subscription(m_session->Endings().Add("accessory port",
                                                         [weak = weak_from_this()]
                                                         {
                                                             if (const auto self = weak.lock()) self->CloseAll();
                                                         }));
    }

    void Follow(const Event& event);
    void CloseEnded();
    void CloseAll();
    void KeepAlive()
    {
        Post(m_session->Context(), [self = shared_from_this()] {});
    }

    std::vector<AccessorySessionPtr> Sessions() const;
    Request<void> WriteTo(std::uint16_t number, Bytes bytes);
    Registry<std::function<void(const AccessorySessionPtr&)>> openedCallbacks;

private:
    using ImplPtr = std::shared_ptr<AccessorySession::Impl>;
    struct Entry
    {
        ImplPtr inside;
        AccessorySessionPtr session;
    };

    // Received bytes name their session by its low byte only: sessions with the same one are neighbors.
    struct LowByteFirst
    {
        bool operator()(std::uint16_t a, std::uint16_t b) const
        {
            return std::pair(a & 0xFF, a) < std::pair(b & 0xFF, b);
        }
    };

    const std::map<std::uint16_t, unsigned char>& Open() const { return m_session->Draft().State().accessorySessions; }
    const Entry& Add(std::uint16_t number, unsigned char protocol);
    void Opened(const AccessoryOpened& event);
    void Close(std::uint16_t number);
    void Received(const AccessoryData& event);

    const std::shared_ptr<Session::Impl> m_session;
    const AccessoryOptions m_options;
    std::map<std::uint16_t, Entry, LowByteFirst> m_entries;
    std::map<std::uint16_t, ImplPtr> m_unseen;  // written to without having seen their opening
    Subscription m_ending;
};

const AccessoryPort::Impl::Entry& AccessoryPort::Impl::Add(std::uint16_t number, unsigned char protocol)
{
    auto inside = std::make_shared<AccessorySession::Impl>(m_session, m_options, number, protocol);
    return m_entries[number] = {inside, std::make_shared<AccessorySession>(inside)};
}

void AccessoryPort::Impl::Follow(const Event& event)
{
    // Received bytes end no session.
    if (const auto* const data = std::get_if<AccessoryData>(&event)) return Received(*data);
    if (const auto* const opened = std::get_if<AccessoryOpened>(&event)) Opened(*opened);
    CloseEnded();
}

// A number that is opened twice was closed in between, though no event reported it.
void AccessoryPort::Impl::Opened(const AccessoryOpened& event)
{
    Close(event.session);
    const AccessorySessionPtr session = Add(event.session, event.protocol).session;
    openedCallbacks.ForEach(m_session->CallbackGuard(), [&session](const auto& callback) { callback(session); });
}

void AccessoryPort::Impl::CloseEnded()
{
    std::vector<std::uint16_t> ended;
    for (const auto& [number, entry] : m_entries)
        if (Open().count(number) == 0) ended.push_back(number);
    for (const std::uint16_t number : ended) Close(number);
}

void AccessoryPort::Impl::Close(std::uint16_t number)
{
    const auto closed = m_entries.extract(number);
    if (!closed.empty()) closed.mapped().inside->Close();
}

void AccessoryPort::Impl::Received(const AccessoryData& event)
{
    std::vector<ImplPtr> fitting;
    for (auto at = m_entries.lower_bound(event.sessionLowByte);
         at != m_entries.end() && (at->first & 0xFF) == event.sessionLowByte; ++at)
        fitting.push_back(at->second.inside);
    if (fitting.size() == 1) return fitting.front()->Receive(event.bytes);
    if (fitting.empty())
        return LogWarning("received bytes for accessory session " + std::to_string(event.sessionLowByte) +
                          ", which is not open");
    const Error error{ErrorKind::Ambiguous, "received bytes for a session number that ends in " +
                                                std::to_string(event.sessionLowByte) + "; " +
                                                std::to_string(fitting.size()) + " open sessions match"};
    for (const ImplPtr& each : fitting) each->Receive(tl::unexpected(error));
}

void AccessoryPort::Impl::CloseAll()
{
    for (const auto& [number, entry] : std::exchange(m_entries, {})) entry.inside->Close();
    for (const auto& [number, inside] : std::exchange(m_unseen, {})) inside->Close();
}

Request<void> AccessoryPort::Impl::WriteTo(std::uint16_t number, Bytes bytes)
{
    const auto seen = m_entries.find(number);
    if (seen != m_entries.end()) return seen->second.inside->Write(std::move(bytes));
    ImplPtr& unseen = m_unseen[number];
    constexpr unsigned char kAnyProtocol = 0;
    if (unseen == nullptr)
        unseen = std::make_shared<AccessorySession::Impl>(m_session, m_options, number, kAnyProtocol);
    return unseen->Write(std::move(bytes));
}

std::vector<AccessorySessionPtr> AccessoryPort::Impl::Sessions() const
{
    std::vector<AccessorySessionPtr> sessions;
    for (const auto& [number, entry] : m_entries) sessions.push_back(entry.session);
    return sessions;
}

AccessoryPort::AccessoryPort(Session& session, const AccessoryOptions& options)
    : m_impl(std::make_shared<Impl>(session.Inside(), options)),
      m_listening(session.OnEvent("accessory port", [impl = m_impl](const Event& event) { impl->Follow(event); })),
      m_watching(session.OnConnection("accessory port", [impl = m_impl](const Connection&) { impl->CloseEnded(); }))
{
    m_impl->Watch();
}

// One of its callbacks may destroy the port: the running callback is kept alive until it returns.
AccessoryPort::~AccessoryPort()
{
    m_listening.Reset();
    m_watching.Reset();
    m_impl->CloseAll();
    m_impl->KeepAlive();
}

std::vector<AccessorySessionPtr> AccessoryPort::Sessions() const
{
    return m_impl->Sessions();
}

Request<void> AccessoryPort::WriteTo(std::uint16_t session, Bytes bytes)
{
    return m_impl->WriteTo(session, std::move(bytes));
}

Subscription AccessoryPort::OnOpened(std::string name, std::function<void(const AccessorySessionPtr&)> callback)
{
    return Subscription(m_impl->openedCallbacks.Add(std::move(name), std::move(callback)));
}
}  // namespace ipodkit
