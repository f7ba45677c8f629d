#include "harness.h"

#include <IQBXIpodPlayer.h>
#include <QBXLog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/QBXSingleton.h"
#include "internal/module_state.h"

// This program's log sink replaces the middleware's.
namespace
{
int category;
char lastLogText[8192];
}  // namespace

zlog_category_t* liblog_category = reinterpret_cast<zlog_category_t*>(&category);

void zlog(zlog_category_t*, const char*, size_t, const char*, size_t, long, int, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(lastLogText, sizeof(lastLogText), format, arguments);
    va_end(arguments);
}

namespace fuzz
{
namespace
{
struct Desk
{
    Desk()
    {
        player = QBX_GetIpodPlayer();
        player->AddListener(&heard);
        qbx::NoteSubscriber(proxy);
    }

    ComZarnLinuxIpod* const proxy = COM_ZARN_LINUX_IPOD(g_object_new(TYPE_COM_ZARN_LINUX_IPOD_PROXY, nullptr));
    IQBXIpodPlayer* player = nullptr;
    Heard heard;
};

// Exists until the process ends.
Desk& TheDesk()
{
    static Desk& desk = *new Desk;
    return desk;
}
}  // namespace

void Heard::Forget()
{
    phoneCall.reset();
    battery.reset();
    track.reset();
    artwork.reset();
    pairing.reset();
}

Heard& Listener()
{
    return TheDesk().heard;
}

ComZarnLinuxIpod* Proxy()
{
    return TheDesk().proxy;
}

void* Client()
{
    return static_cast<QBXIpod_MediaPlayer_Client*>(TheDesk().player);
}

const char* LastLogText()
{
    return lastLogText;
}

void Require(bool holds, const char* what)
{
    if (holds) return;
    std::fprintf(stderr, "neither dropped nor decoded like the reference: %s\n", what);
    std::abort();
}

GVariant* Wrapped(const std::uint8_t* data, std::size_t size)
{
    return g_variant_new_variant(g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data, size, 1));
}
}  // namespace fuzz
