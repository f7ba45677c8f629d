/// @file
/// Types of the head unit's application manager, as far as its notifications need them. The numbers belong to
/// the unit; nothing in the player looks at them.
#pragma once

/// What the application manager knows of a module that starts or stops.
struct AppBootInfo
{
    int module;
    int status;
};

enum BootStage : int
{
};

enum eLogLevel : int
{
};

enum ServiceModule : int
{
};
