/// @file
/// GLib's objects under C++ ownership.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace ipodkit
{
/// Releases an object with one of GLib's functions.
template <auto release>
struct Releaser
{
    template <class T>
    void operator()(T* object) const
    {
        release(object);
    }
};

/// Removes the source from its context.
struct SourceDestroy
{
    void operator()(GSource* source) const
    {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

using ConnectionPtr = std::unique_ptr<GDBusConnection, Releaser<g_object_unref>>;
using ContextPtr = std::unique_ptr<GMainContext, Releaser<g_main_context_unref>>;
using MessagePtr = std::unique_ptr<GDBusMessage, Releaser<g_object_unref>>;
using ErrorPtr = std::unique_ptr<GError, Releaser<g_error_free>>;
using SourcePtr = std::unique_ptr<GSource, SourceDestroy>;
using VariantPtr = std::unique_ptr<GVariant, Releaser<g_variant_unref>>;
}  // namespace ipodkit
