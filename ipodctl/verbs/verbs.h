/// @file
/// Declares the verb tables, one per subject.
#pragma once

#include "verbs/verb.h"

namespace ctl
{
std::vector<Verb> StatusVerbs();        ///< status, info
std::vector<Verb> TransportVerbs();     ///< play, pause, stop, next, previous, seek
std::vector<Verb> ModeVerbs();          ///< shuffle, repeat
std::vector<Verb> ListVerbs();          ///< ls
std::vector<Verb> BrowseVerbs();        ///< cd
std::vector<Verb> BrowserVerbs();       ///< browse
std::vector<Verb> QueueVerbs();         ///< queue
std::vector<Verb> DeviceVerbs();        ///< devices, carplay, carlife, button, hub
std::vector<Verb> ArtVerbs();           ///< art
std::vector<Verb> EventVerbs();         ///< events
std::vector<Verb> EapVerbs();           ///< eap
std::vector<Verb> SimVerbs();           ///< sim
std::vector<Verb> SharedMemoryVerbs();  ///< shm
std::vector<Verb> BenchVerbs();         ///< bench
std::vector<Verb> DoctorVerbs();        ///< doctor
std::vector<Verb> LayoutVerbs();        ///< fingerprint
}  // namespace ctl
