/// @file
/// Controls the stand-in for the audio-source manager; not available on the head unit.
#pragma once

/// Grants every request from now on (@p code 0, the initial value) or refuses it with @p code.
/// The environment variable QBX_SOURCE_REFUSE sets the initial value. Any thread may call it.
void QBXSourceRefuse(int code);
