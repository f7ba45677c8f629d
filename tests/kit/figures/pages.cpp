// The time of one page, from request to completion, with and without its locks, in random order.
#include <ipodkit/pager.h>

#include "kit/figures/figures.h"
#include "kit/kit_test.h"
#include "session/session_impl.h"

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
    int page = 0;
    const auto read = [&](bool locked)
    {
        session->Inside()->SharedLeases()->Ignore(!locked);
        return TimePage(pager, ++page % 2000 * kPage);
    };
    Samples bare;
    Samples again;
    Samples pages;
    InRandomOrder(
        Rounds(4000), [&] { pages.push_back(read(true)); }, [&] { bare.push_back(read(false)); },
        [&] { again.push_back(read(false)); });
    Print("page_median", Quantile(pages, 0.5));
    Print("page_control", Quantile(again, 0.5) / Quantile(bare, 0.5));
    Print("page_ratio", Quantile(pages, 0.5) / Quantile(bare, 0.5));
}
}  // namespace
}  // namespace test
