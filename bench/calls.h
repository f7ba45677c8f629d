/// @file
/// The comparisons that cross the bus, by subject. @p calls is the number of calls per variant.
#pragma once

namespace bench
{
/// Commands with and without log lines, records in variants, the asynchronous command.
void CompareCommands(int calls);

/// Pages, artwork, and accessory writes of many sizes. The largest are measured @p bigCalls times.
void CompareBulk(int calls, int bigCalls);

/// Processor time of an event, bare and with listeners.
void CompareEvents(int calls);

/// InitInstance(). Each call leaks a proxy, so this needs a separate process.
void CompareConnecting(int calls);

/// First and second attachment of the segments. The first happens once per process.
void MeasureAttachment();
}  // namespace bench
