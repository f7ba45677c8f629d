// An application that uses only installed files: every public header, and a symbol of each part that the linker must
// find. It does not connect to a bus.
#include <IQBXAppListener.h>
#include <IQBXIpodPlayer.h>
#include <IQBXIpodPlayerListener.h>
#include <IQBXListener.h>
#include <IQBXService.h>
#include <QBXAppTypes.h>
#include <QBXIpodShareMemory.h>
#include <QBXIpodTypes.h>
#include <QBXLog.h>
#include <QBXMutex.h>
#include <QBXSource.h>
#include <gvariant_data.h>
#include <ipod.pb.h>
#include <ipod_dbus.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace
{
class Progress : public IQBXIpodPlayerListener
{
public:
    void OnPlayProgressChange(int pos, int) override { m_pos = pos; }
    int m_pos = -1;
};

void Expect(bool holds, const char* what)
{
    if (holds) return;
    std::cerr << "does not hold: " << what << '\n';
    std::exit(EXIT_FAILURE);
}

void UseListener()
{
    Progress progress;
    IQBXListener<IQBXIpodPlayerListener> registry;
    registry.AddListener(&progress);
    for (IQBXIpodPlayerListener* listener : registry.GetListeners()) listener->OnPlayProgressChange(1500, 180000);
    Expect(progress.m_pos == 1500, "a registered listener is called");
}

void UseByteRecords()
{
    unsigned char sent[3] = {1, 0, 255};
    GVariant* const packed = g_variant_ref_sink(gvariant_data_build(sent, sizeof(sent)));
    std::vector<unsigned char> received;
    gvariant_data_extract(received, packed);
    g_variant_unref(packed);
    Expect(received == std::vector<unsigned char>(sent, sent + sizeof(sent)), "packed bytes are unpacked");
}

void UseMessages()
{
    ipod::iPodBattery sent;
    sent.set_battery_charge_level(80);
    ipod::iPodBattery received;
    Expect(received.ParseFromString(sent.SerializeAsString()), "a message is parsed");
    Expect(received.battery_charge_level() == 80, "a message keeps its contents");
}

void UseBinding()
{
    const std::string name = com_zarn_linux_ipod_interface_info()->name;
    Expect(name == "com.zarn.linux.ipod", "the binding describes the interface");
    ComZarnLinuxIpod* const service = com_zarn_linux_ipod_skeleton_new();
    Expect(IS_COM_ZARN_LINUX_IPOD(service), "the service's half is there");
    g_object_unref(service);
}

void UseMiddleware()
{
    QBXCriticalSection lock;
    lock.Lock();
    lock.Unlock();
    Expect(!QBXSource::IsActived(10), "no source is active at the start");
    Expect(QBX_LogInit("LOUD") == 0 && liblog_category == nullptr, "logging refuses a level that it does not know");
}

void UsePlayer()
{
    Expect(g_VecPlayingListShareMemory == nullptr, "no vector is attached before there is a player");
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    Progress progress;
    player->AddListener(&progress);
    Expect(player->GetListenerCount() == 1, "the player counts its listener");
    Expect(g_VecPlayingListShareMemory != nullptr, "the vectors are attached with the player");
    Expect(segment_list_vector.get_size() > 0, "the segment is mapped");
    player->RemoveListener(&progress);
    Expect(player->ExitInstance(), "the player ends its use");
    QBX_DestroyIpodPlayer();
}
}  // namespace

int main()
{
    UseListener();
    UseByteRecords();
    UseMessages();
    UseBinding();
    UseMiddleware();
    UsePlayer();
    std::cout << "the installed library works\n";
}
