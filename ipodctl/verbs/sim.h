/// @file
/// What the parts of "ipodctl sim" share.
#pragma once

#include <ipodkit/fields.h>

#include <string>
#include <vector>

#include "session/sim_link.h"
#include "verbs/verb.h"

namespace ctl
{
/// Makes an option one of a few words, which its help lists. Parsing replaces the word by its place in the list, which
/// is the number that travels.
CLI::Option* AsNumber(CLI::Option* option, const std::vector<std::string>& words);

/// Accepts text that the bus can carry.
CLI::Validator Utf8();

/// The words for the numbers 0, 1, 2, ….
template <class E>
std::vector<std::string> WordsOf()
{
    return {std::begin(ipodkit::EnumNames<E>::names), std::end(ipodkit::EnumNames<E>::names)};
}

/// The answer of an event that was asked for: the verb's name and nothing else.
Answer Asked(const std::string& event);

/// The subverbs of "sim", by subject.
std::vector<Verb> SimCallVerbs();  ///< call, battery
std::vector<Verb>
SimDeviceVerbs();  ///< carplay, carlife, wireless, pairing, location, source, app, attach, detach, button
std::vector<Verb> SimEapVerbs();   ///< eap-open, eap-close, eap-data
std::vector<Verb> SimTestVerbs();  ///< calls, fault, clear-faults, scenario
}  // namespace ctl
