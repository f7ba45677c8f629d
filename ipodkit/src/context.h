/// @file
/// Work for the thread that runs a main context.
#pragma once

#include <functional>

#include "glib_ptr.h"

namespace ipodkit
{
/// Makes @p context the thread-default one for as long as it lives, so that GIO delivers there. The calling thread
/// runs the context.
class DefaultContext
{
public:
    explicit DefaultContext(GMainContext* context);
    ~DefaultContext();
    DefaultContext(const DefaultContext&) = delete;
    DefaultContext& operator=(const DefaultContext&) = delete;

private:
    GMainContext* m_pushed;
};

/// Runs @p work in @p context, later, also when the caller is there already.
void Post(GMainContext* context, std::function<void()> work);
}  // namespace ipodkit
