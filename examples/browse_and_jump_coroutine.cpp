// The same as browse_and_jump.cpp with co_await.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/coroutine.h>
#include <ipodkit/pager.h>
#include <ipodnames/jump_index.h>

#include <iostream>

using namespace ipodkit;

static Task<> Jump(Session& session, std::string query)
{
    while (session.State()->phase != Phase::Ready) co_await session.Changed(Field::Connection);
    Pager pager(session, ListKind::Database);
    const Result<std::vector<std::string>> names = co_await pager.Range(0, Pager::End);
    if (!names) std::cerr << names.error().Text() << '\n', std::exit(EXIT_FAILURE);
    const ipodnames::JumpIndex index(*names);
    for (const int found : index.Search(query))
        std::cout << found << '\t' << names->at(found) << "\t(" << index.Reading(found) << ")\n";
    std::exit(EXIT_SUCCESS);
}

int main(int argc, char** argv)
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (argc < 2 || !session) return std::cerr << "usage: browse_and_jump_coroutine QUERY\n", EXIT_FAILURE;
    Tasks tasks;
    tasks.Start(Jump(**session, argv[1]));
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
