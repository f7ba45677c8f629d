/// @file
/// Types of the head unit's application manager, as far as its notifications need them. The numbers belong to
/// the unit; nothing in the player looks at them.
#pragma once

/// What the application manager knows of a module that starts or stops.
struct AppBootInfo
{
    int module;  ///< number of the module
    int status;  ///< its state
};

/// How far the unit's start has come.
enum BootStage : int
{
};

/// Level of the unit's logging.
enum eLogLevel : int
{
};

/// A module that runs as a process of its own.
enum ServiceModule : int
{
};
