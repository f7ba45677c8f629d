/// @file
/// Notifications of the unit's application manager.
///
/// The player inherits them with their empty bodies and reacts to none. The order of the operations is part
/// of the published interface: append, never insert.
#pragma once

#include <QBXAppTypes.h>

#include <string>

/// Receives the notifications; every operation has an empty body.
class IQBXAppListener
{
public:
    virtual ~IQBXAppListener() = default;

    /// A module was started or stopped.
    virtual void OnModuleStatusChanged(AppBootInfo& /*info*/) {}

    /// The unit reached a stage of its start.
    virtual void OnSystemBootStageNotify(BootStage /*stage*/) {}

    /// Android Auto ended abnormally.
    virtual void OnAndroidAutoAbortHandle(int) {}

    /// Android Auto could not connect in time.
    virtual void OnAAConnectionTimeoutNotify(int, const std::string&) {}

    /// Logging is to use another level from now on.
    virtual void OnReloadLogConfigNotify(eLogLevel /*level*/) {}

    /// The resource data of the unit changed.
    virtual void OnResourceDataChangeNotify() {}

    /// The process of a module was started anew.
    virtual void OnProcRebootNotify(ServiceModule /*module*/) {}
};
