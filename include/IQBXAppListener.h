/// @file
/// Notifications of the head unit's application manager.
///
/// The player inherits the empty implementations and reacts to none of them. The order of the operations is part of the
/// published interface: append, never insert.
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

    /// The head unit reached a boot stage.
    virtual void OnSystemBootStageNotify(BootStage /*stage*/) {}

    /// Android Auto ended abnormally. The argument is the application manager's.
    virtual void OnAndroidAutoAbortHandle(int) {}

    /// Android Auto could not connect in time. The arguments are the application manager's.
    virtual void OnAAConnectionTimeoutNotify(int, const std::string&) {}

    /// The log level changed.
    virtual void OnReloadLogConfigNotify(eLogLevel /*level*/) {}

    /// The resource data of the head unit changed.
    virtual void OnResourceDataChangeNotify() {}

    /// The process of a module was restarted.
    virtual void OnProcRebootNotify(ServiceModule /*module*/) {}
};
