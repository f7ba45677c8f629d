// Links the library and the C++ library, and does nothing: the difference from link_gio is the cost of loading it.
#include <IQBXIpodPlayer.h>

#include <exception>

int main()
{
    const auto volatile linked = &QBX_GetIpodPlayer;
    const auto volatile language = &std::terminate;
    return linked == nullptr || language == nullptr;
}
