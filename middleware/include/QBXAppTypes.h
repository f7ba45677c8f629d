/// @file
/// Types of the head unit's application manager, as far as its notifications need them. The numbers belong to
/// the head unit; the player uses none of them.
#pragma once

/// State of a module that starts or stops.
struct AppBootInfo
{
    int module;  ///< number of the module
    int status;  ///< its state
};

/// Stage of the head unit's start.
enum BootStage : int
{
};

/// Level of the head unit's logging.
enum eLogLevel : int
{
};

/// A module that runs as a process of its own.
enum ServiceModule : int
{
};
