/// @file
/// Types of the head unit's application manager that its notifications use. The head unit defines the numbers; the
/// player uses none of them.
#pragma once

/// State of a module that is starting or stopping.
struct AppBootInfo
{
    int module;  ///< number of the module
    int status;  ///< state of the module
};

/// Boot stage of the head unit.
enum BootStage : int
{
};

/// Log level of the head unit.
enum eLogLevel : int
{
};

/// A module that runs as a separate process.
enum ServiceModule : int
{
};
