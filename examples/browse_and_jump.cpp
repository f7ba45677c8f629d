// Prints the names on the current level of the music database that match what was typed: browse_and_jump zmx
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/pager.h>
#include <ipodnames/jump_index.h>

#include <iostream>

using namespace ipodkit;

int main(int argc, char** argv)
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (argc < 2 || !session) return std::cerr << "usage: browse_and_jump QUERY\n", EXIT_FAILURE;

    Pager pager(**session, ListKind::Database);
    const auto jump = [argv](const Result<std::vector<std::string>>& names)
    {
        if (!names) std::cerr << names.error().Text() << '\n', std::exit(EXIT_FAILURE);
        const ipodnames::JumpIndex index(*names);
        for (const int found : index.Search(argv[1]))
            std::cout << found << '\t' << names->at(found) << "\t(" << index.Reading(found) << ")\n";
        std::exit(EXIT_SUCCESS);
    };
    const auto read = [&](const Connection& connection)
    {
        if (connection.phase == Phase::Ready) pager.Range(0, Pager::End).Start(jump);
    };
    const Subscription ready = (*session)->OnConnection("browse", read);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
