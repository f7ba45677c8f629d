// The same client with ipodkit, from start to Phase::Ready: "client_kit [stay]".
#include <QBXLog.h>
#include <ipodkit/session.h>

#include "client.h"

int main(int argc, char** argv)
{
    QBX_LogInit("ERROR:/dev/null");
    const auto session = *ipodkit::Session::Open();
    return bench::LiveAfter(argc, argv, [&] { return session->Connection().phase == ipodkit::Phase::Ready; });
}
