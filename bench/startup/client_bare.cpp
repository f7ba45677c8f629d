// A client written with GDBus alone, from start to the answers to its first requests: "client_bare [stay]".
#include "bare_client.h"
#include "client.h"

int main(int argc, char** argv)
{
    bench::BareClient client;
    client.Open();
    return bench::LiveAfter(argc, argv, [&client] { return client.Ready(); });
}
