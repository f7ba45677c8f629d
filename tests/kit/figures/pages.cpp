// The time of one page, from request to completion, including its locks.
#include <ipodkit/pager.h>

#include "kit/figures/figures.h"
#include "kit/kit_test.h"

namespace test
{
namespace
{
using PageFigures = KitTest;

constexpr int kPage = 50;

void AnswerOnePage(SharedVectors& shared, GDBusMethodInvocation* call)
{
    shared.SetList("VecDBListShareMemory", std::vector<std::string>(kPage, "A song with a name of common length"));
    g_dbus_method_invocation_return_value(call, g_variant_new("(bbb)", FALSE, FALSE, TRUE));
}

double TimePage(Pager& pager, int index)
{
    bool done = false;
    const auto start = Clock::now();
    pager.At(index).Start(
        [&done](const Result<PagePtr>& page)
        {
            EXPECT_TRUE(page);
            done = true;
        });
    while (!done) g_main_context_iteration(nullptr, TRUE);
    return Microseconds(Clock::now() - start);
}

TEST_F(PageFigures, DatabasePage)
{
    SharedVectors shared;
    FakeService service;
    AnswerState(service);
    service.Answer("GetCurDbListItemsAmount", "(100000,)");
    service.React("GetCurDbListItems", [&shared](GDBusMethodInvocation* call) { AnswerOnePage(shared, call); });
    PagerOptions single;
    single.pageSize = kPage;
    single.prefetch = 0;
    single.cachedPages = 1;
    Pager pager(Ready(), ListKind::Database, single);
    Samples pages;
    for (int i = 0; i < Rounds(4000); ++i) pages.push_back(TimePage(pager, i % 2000 * kPage));
    Print("page_median", Quantile(pages, 0.5));
}
}  // namespace
}  // namespace test
