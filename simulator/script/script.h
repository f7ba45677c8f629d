/// @file
/// Scripted replies that bypass the type checks of GDBus: they may violate the contract.
#pragma once

#include <ipodsim_script.h>

#include <string>

namespace ipodsim
{
/// Builds the body of a reply to @p method; floating.
/// @throws std::runtime_error  the body is not valid GVariant text, or has the wrong type although it must obey the
///                             contract
GVariant* BodyOf(const Reply& reply, const std::string& method);

/// Builds the body of a signal; floating. Throws like BodyOf().
GVariant* BodyOfSignal(const std::string& signal, const std::string& text);

/// Sends a body of any type unless the caller expects no reply. Takes ownership of the invocation.
void SendReply(GDBusMethodInvocation* invocation, GVariant* body);
}  // namespace ipodsim
