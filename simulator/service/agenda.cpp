#include "service/agenda.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace ipodsim
{
struct Agenda::Item
{
    Agenda& agenda;
    std::function<void()> work;
    GSource* source;
};

Agenda::~Agenda()
{
    for (Item* item : m_items)
    {
        g_source_destroy(item->source);
        g_source_unref(item->source);
        delete item;
    }
}

void Agenda::After(double milliseconds, std::function<void()> work)
{
    constexpr double kLongestMs = 15.0 * 24 * 3600 * 1000;
    GSource* const source =
        g_timeout_source_new(static_cast<guint>(milliseconds > 0 ? std::min(milliseconds, kLongestMs) : 0));
    auto item = std::make_unique<Item>(Item{*this, std::move(work), source});
    g_source_set_callback(source, OnTime, item.get(), nullptr);
    g_source_attach(source, m_context);
    m_items.insert(item.release());
}

gboolean Agenda::OnTime(gpointer data)
{
    const std::unique_ptr<Item> item(static_cast<Item*>(data));
    item->agenda.m_items.erase(item.get());
    g_source_unref(item->source);
    item->work();
    return G_SOURCE_REMOVE;
}
}  // namespace ipodsim
