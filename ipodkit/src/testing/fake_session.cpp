#include <ipodkit/testing.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "session/session_impl.h"

namespace ipodkit
{
namespace
{
using detail::Body;
using detail::Call;
using Serial = detail::Bus::Serial;

struct List
{
    ListKind kind;
    const char* page;
    const char* count;  // null for lists whose size the service does not report
    const char* filled;
};

constexpr List kLists[] = {
    {ListKind::Playing, "GetPlayingListItems", "GetPlayingListItemsAmount", "(true,)"},
    {ListKind::Database, "GetCurDbListItems", "GetCurDbListItemsAmount", "(false, false, true)"},
    {ListKind::DatabasePinyin, "GetCurDbListItemsPinyin", "GetCurDbListItemsAmount", "(false, false, true)"},
    {ListKind::Update, "GetUpdateListItems", nullptr, "(true,)"},
    {ListKind::UpdatePinyin, "GetUpdateListItemsPinyin", nullptr, "(true,)"},
    {ListKind::Devices, "GetDeviceList", "GetDeviceAmount", "(true,)"},
};

Body Parsed(const std::string& text)
{
    GError* error = nullptr;
    GVariant* const value = g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, &error);
    const ErrorPtr owned(error);
    if (value == nullptr) throw std::invalid_argument("'" + text + "' is not valid GVariant text: " + owned->message);
    return {value, g_variant_unref};
}
}  // namespace

class FakeSession::Impl
{
public:
    explicit Impl(const SessionOptions& options) : inside(std::make_shared<Session::Impl>(AtOnce(options)))
    {
        inside->m_bus->AnswerBy([this](const Call& call, Serial serial) { return Respond(call, serial); });
        inside->m_leases->Ignore();
        inside->m_names = [this](ListKind) { return std::optional(page); };
        inside->Step(Phase::Absent);
    }

    static SessionOptions AtOnce(SessionOptions options)
    {
        options.settle = std::chrono::milliseconds(0);
        return options;
    }

    std::optional<Result<Body>> Respond(const Call& call, Serial serial)
    {
        calls.push_back(TextOf(call));
        if (held.count(call.method) == 0) return AnswerTo(call);
        if (serial != 0) waiting.emplace(serial, Waiting{call, now + *call.terms.deadline});
        return std::nullopt;
    }

    Result<Body> AnswerTo(const Call& call)
    {
        const auto known = answers.find(call.method);
        if (known != answers.end()) return known->second;
        for (const List& list : kLists)
        {
            const auto names = lists.find(list.kind);
            if (names == lists.end()) continue;
            if (std::strcmp(list.page, call.method) == 0) return Fill(names->second, call, list.filled);
            if (list.count != nullptr && std::strcmp(list.count, call.method) == 0)
                return Parsed("(" + std::to_string(names->second.size()) + ",)");
        }
        if (std::strcmp(call.replyType, "()") == 0) return Parsed("()");
        if (call.isCommand) return Parsed("(true,)");
        return tl::unexpected(Error{ErrorKind::Refused, std::string("the test has no answer to ") + call.method});
    }

    // Requests for the list of devices have no range.
    Result<Body> Fill(const std::vector<std::string>& names, const Call& call, const char* filled)
    {
        const int size = static_cast<int>(names.size());
        int first = 0;
        int last = size - 1;
        if (call.arguments != nullptr) g_variant_get(call.arguments.get(), "(ii)", &first, &last);
        page.assign(names.begin() + std::clamp(first, 0, size), names.begin() + std::clamp(last + 1, 0, size));
        return Parsed(filled);
    }

    // Searches again each time, because a completion may complete others.
    template <class Wanted, class Answer>
    void CompleteThose(const Wanted& wanted, const Answer& answer)
    {
        const auto next = [&] { return std::find_if(waiting.begin(), waiting.end(), wanted); };
        for (auto found = next(); found != waiting.end(); found = next())
        {
            const auto each = waiting.extract(found);
            inside->m_bus->Complete(each.key(), answer(each.mapped().call));
        }
    }

    void Run() const
    {
        while (g_main_context_iteration(inside->Context(), FALSE) != FALSE) continue;
    }

    struct Waiting
    {
        Call call;
        std::chrono::milliseconds due;
    };

    const std::shared_ptr<Session::Impl> inside;
    std::unique_ptr<Session> session;
    std::map<std::string, Result<Body>> answers;
    std::set<std::string> held;
    std::map<Serial, Waiting> waiting;
    std::map<ListKind, std::vector<std::string>> lists;
    std::vector<std::string> page;
    std::vector<std::string> calls;
    std::chrono::milliseconds now{0};
};

FakeSession::FakeSession(const SessionOptions& options) : m_impl(std::make_unique<Impl>(options))
{
    m_impl->session.reset(new Session(m_impl->inside));
}

FakeSession::~FakeSession()
{
    m_impl->session.reset();
}

Session& FakeSession::Get()
{
    return *m_impl->session;
}

PlayerState FakeSession::ReadyState()
{
    PlayerState state;
    state.phase = Phase::Ready;
    state.generation = 1;
    return state;
}

void FakeSession::SetState(const PlayerState& state)
{
    Session::Impl& inside = *m_impl->inside;
    inside.m_phase = state.phase;
    inside.m_generation = state.generation;
    inside.m_draft.Replace(state);
    inside.m_publisher->Replace(state);
    Run();
}

void FakeSession::Emit(const Event& event)
{
    m_impl->inside->Follow(event);
    Run();
}

void FakeSession::Answer(const std::string& method, const std::string& body)
{
    m_impl->answers[method] = Parsed(body);
}

void FakeSession::Fail(const std::string& method, const Error& error)
{
    m_impl->answers[method] = tl::unexpected(error);
}

void FakeSession::Hold(const std::string& method)
{
    m_impl->held.insert(method);
}

void FakeSession::AnswerHeld(const std::string& method)
{
    m_impl->held.erase(method);
    m_impl->CompleteThose([&method](const auto& each) { return each.second.call.method == method; },
                          [this](const Call& call) { return m_impl->AnswerTo(call); });
    Run();
}

void FakeSession::SetList(ListKind kind, std::vector<std::string> names)
{
    m_impl->lists[kind] = std::move(names);
}

std::vector<std::string> FakeSession::Calls() const
{
    return m_impl->calls;
}

void FakeSession::Advance(std::chrono::milliseconds time)
{
    Run();
    m_impl->now += time;
    PlayerState state = *Get().State();
    if (state.position && state.position->advancing)
    {
        Position position = *state.position;
        position.at -= time;
        state.position = position;
        SetState(state);
    }
    m_impl->CompleteThose([this](const auto& each) { return each.second.due <= m_impl->now; },
                          [](const Call& call) { return tl::unexpected(detail::TimedOut(*call.terms.deadline)); });
    m_impl->inside->m_bus->Home()->Advance(time);
    Run();
}

void FakeSession::Run()
{
    m_impl->Run();
}
}  // namespace ipodkit
