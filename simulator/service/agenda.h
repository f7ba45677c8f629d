/// @file
/// Delayed tasks.
#pragma once

#include <glib.h>

#include <functional>
#include <set>

namespace ipodsim
{
/// Runs tasks on a main context; its destruction drops pending tasks. Not thread-safe.
class Agenda
{
public:
    explicit Agenda(GMainContext* context) : m_context(context) {}
    ~Agenda();
    Agenda(const Agenda&) = delete;
    Agenda& operator=(const Agenda&) = delete;

    void After(double milliseconds, std::function<void()> work);

private:
    struct Item;
    static gboolean OnTime(gpointer data);

    GMainContext* m_context;
    std::set<Item*> m_items;
};
}  // namespace ipodsim
