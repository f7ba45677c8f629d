#include "session/service_news.h"

#include <cstdio>

#include "output/moment.h"
#include "output/text.h"

namespace ctl
{
void TellOfService(Output& out, bool line, const char* state, const std::string& what)
{
    const Moment now = Moment::Now();
    if (line) return out.Line({{"time", now.full}, {"event", "service"}, {"state", state}, {"text", what}}, "");
    out.Finish();
    std::fprintf(stderr, "ipodctl: %s  %s\n", now.clock.c_str(), Printable(what).c_str());
}
}  // namespace ctl
