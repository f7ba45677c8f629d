/// @file
/// Replies by hand, past the checks of GDBus: they may have types that the contract does not allow.
#pragma once

#include <ipodsim_script.h>

#include <string>

namespace ipodsim
{
/// The body of a reply to @p method, floating.
/// @throws std::runtime_error  it is not GVariant text, or not of the contract's types where it must be
GVariant* BodyOf(const Reply& reply, const std::string& method);

/// The body of a signal, floating; throws as BodyOf().
GVariant* BodyOfSignal(const std::string& signal, const std::string& text);

/// Sends a body of any type unless the caller expects none, and takes over the invocation.
void SendReply(GDBusMethodInvocation* invocation, GVariant* body);
}  // namespace ipodsim
