/// @file
/// Things to do later.
#pragma once

#include <glib.h>

#include <functional>
#include <set>

namespace ipodsim
{
/// Does them on a main context; what is left when it is destroyed is not done. Only one thread may use it.
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
