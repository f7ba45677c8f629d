// Reads the current level of the music database and prints the names that match what was typed:
// browse_and_jump zjl
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/pager.h>
#include <ipodnames/jump_index.h>

#include <cstdio>
#include <cstdlib>

using namespace ipodkit;

namespace
{
class Browser
{
public:
    Browser(Session& session, std::string query) : m_pager(session, ListKind::Database), m_query(std::move(query)) {}

    void Start()
    {
        m_pager.Count().Start(
            [this](const Result<int>& count)
            {
                if (!count) return Fail(count.error());
                m_count = *count;
                Next();
            });
    }

private:
    void Next()
    {
        const int index = static_cast<int>(m_names.size());
        if (index >= m_count) return Show();
        m_pager.At(index).Start(
            [this](const Result<PagePtr>& page)
            {
                if (!page) return Fail(page.error());
                m_names.insert(m_names.end(), (*page)->names.begin(), (*page)->names.end());
                Next();
            });
    }

    void Show() const
    {
        const ipodnames::JumpIndex index(m_names);
        for (const int found : index.Search(m_query))
            std::printf("%d\t%s\t(%s)\n", found, m_names[static_cast<std::size_t>(found)].c_str(),
                        index.Reading(found).c_str());
        std::fflush(stdout);
        std::exit(EXIT_SUCCESS);
    }

    static void Fail(const Error& error)
    {
        std::fprintf(stderr, "%s\n", error.Text().c_str());
        std::exit(EXIT_FAILURE);
    }

    Pager m_pager;
    std::string m_query;
    std::vector<std::string> m_names;
    int m_count = 0;
};
}  // namespace

int main(int argc, char** argv)
{
    // Otherwise each record of the library is a line of warning. QBX_LOG in the environment says it too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (argc < 2 || !session)
    {
        std::fprintf(stderr, "usage: browse_and_jump QUERY\n");
        return EXIT_FAILURE;
    }
    Browser browser(**session, argv[1]);
    const auto ready = (*session)->OnConnection("browser",
                                                [&browser](const Connection& connection)
                                                {
                                                    if (connection.phase == Phase::Ready) browser.Start();
                                                });
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
