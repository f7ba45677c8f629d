/// @file
/// All verbs, by subject.
#pragma once

#include "verb.h"

namespace ctl
{
std::vector<Verb> StatusVerbs();     ///< status, info
std::vector<Verb> TransportVerbs();  ///< play, pause, stop, next, previous, seek
std::vector<Verb> ModeVerbs();       ///< shuffle, repeat
std::vector<Verb> BrowseVerbs();     ///< ls, cd
std::vector<Verb> QueueVerbs();      ///< queue
std::vector<Verb> DeviceVerbs();     ///< devices, carplay, carlife, button, hub
std::vector<Verb> ArtVerbs();        ///< art
std::vector<Verb> EventVerbs();      ///< events
std::vector<Verb> EapVerbs();        ///< eap
std::vector<Verb> DoctorVerbs();     ///< doctor
std::vector<Verb> LayoutVerbs();     ///< fingerprint
}  // namespace ctl
