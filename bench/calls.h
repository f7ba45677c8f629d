/// @file
/// The contests that cross the bus, by subject. @p calls is the number of calls of each variant.
#pragma once

namespace bench
{
/// Quiet and logging commands, records in variants, the asynchronous command.
void CompareCommands(int calls);

/// Pages, pictures and accessory writes of many sizes. The biggest are measured @p bigCalls times.
void CompareBulk(int calls, int bigCalls);

/// Processor time of an event, bare and with listeners.
void CompareEvents(int calls);

/// InitInstance(). Each call leaves a proxy behind, so this needs a process of its own.
void CompareConnecting(int calls);

/// First and second attachment of the segments. The first happens once in a process.
void MeasureAttachment();
}  // namespace bench
