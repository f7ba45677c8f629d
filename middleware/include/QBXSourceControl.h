/// @file
/// Control of the stand-in for the audio-source manager; the head unit has nothing of the kind.
#pragma once

/// From now on every request is granted (@p code 0, the start value) or refused with @p code.
/// The environment variable QBX_SOURCE_REFUSE sets the start value. Any thread may call it.
void QBXSourceRefuse(int code);
