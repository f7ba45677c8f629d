/// @file
/// Notifications of the unit's application manager.
///
/// The player inherits them with their empty bodies and reacts to none. The order of the operations is part
/// of the published interface: append, never insert.
#pragma once

#include <QBXAppTypes.h>

#include <string>

class IQBXAppListener
{
public:
    virtual ~IQBXAppListener() = default;

    virtual void OnModuleStatusChanged(AppBootInfo&) {}
    virtual void OnSystemBootStageNotify(BootStage) {}
    virtual void OnAndroidAutoAbortHandle(int) {}
    virtual void OnAAConnectionTimeoutNotify(int, const std::string&) {}
    virtual void OnReloadLogConfigNotify(eLogLevel) {}
    virtual void OnResourceDataChangeNotify() {}
    virtual void OnProcRebootNotify(ServiceModule) {}
};
