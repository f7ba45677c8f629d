/// @file
/// GLib's objects under C++ ownership.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace ipodkit
{
struct ObjectUnref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct ContextUnref
{
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
};

struct ErrorFree
{
    void operator()(GError* error) const { g_error_free(error); }
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

struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

using ConnectionPtr = std::unique_ptr<GDBusConnection, ObjectUnref>;
using ContextPtr = std::unique_ptr<GMainContext, ContextUnref>;
using MessagePtr = std::unique_ptr<GDBusMessage, ObjectUnref>;
using ErrorPtr = std::unique_ptr<GError, ErrorFree>;
using SourcePtr = std::unique_ptr<GSource, SourceDestroy>;
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;
}  // namespace ipodkit
