/// @file
/// The control interface of the simulator, com.zarn.linux.ipod.Simulator.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "session/session.h"

namespace ctl
{
struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// Calls a method of the simulator and returns its answer, a tuple.
/// @param arguments  a floating tuple, or null for none
/// @throws Failure  no bus, no simulator on it, or it refused and said why
VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments);

/// Bytes as they travel; floating.
GVariant* ByteArray(const std::string& bytes);

/// The bytes that pairs of hexadecimal digits stand for.
/// @throws Failure  kUsage, when there is anything else
std::string FromHex(const std::string& hex);

/// A dictionary "a{sv}" that is filled bit by bit.
class Fields
{
public:
    void Add(const char* key, GVariant* value);
    bool Empty() const { return m_fields.empty(); }
    /// The dictionary, floating; the object is empty then.
    GVariant* Take();

private:
    std::vector<std::pair<std::string, VariantPtr>> m_fields;
};
}  // namespace ctl
