// An application that loads the library at run time, and unloads it while events are pending.
#include <IQBXIpodPlayer.h>
#include <dlfcn.h>
#include <glib.h>

#include <cstdio>

namespace
{
class Listener : public IQBXIpodPlayerListener
{
public:
    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override { received = status; }

    int received = -1;
};

void Say(const char* text, int number)
{
    std::printf(text, number);
    std::fflush(stdout);
}

IQBXIpodPlayer* GetPlayer(void* library)
{
    using Getter = IQBXIpodPlayer* (*)();
    const auto getter = reinterpret_cast<Getter>(dlsym(library, "_Z17QBX_GetIpodPlayerv"));
    return getter == nullptr ? nullptr : getter();
}
}  // namespace

int main(int, char** argv)
{
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    IQBXIpodPlayer* const player = library == nullptr ? nullptr : GetPlayer(library);
    if (player == nullptr || !player->InitInstance()) return 1;
    Listener listener;
    player->AddListener(&listener);
    if (dlclose(library) != 0) return 1;
    Say("closed\n", 0);
    while (listener.received < 0) g_main_context_iteration(nullptr, TRUE);
    Say("event %d\n", listener.received);
    if (player->GetPlayStatus() != 77) return 1;
    Say("alive\n", 0);
    return 0;
}
