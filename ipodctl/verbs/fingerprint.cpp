// The layout of the shared segments in this build, for comparison with the service's. It needs neither bus nor service.
#include <QBXIpodShareMemory.h>

#include "segments/layout.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
layout::Facts Describe()
{
    try
    {
        return layout::Describe<QBXSharedSegment, QBXStringPageVector, QBXByteVector>(
            layout::ContractNames(), kListSegmentSize, kBufferSegmentSize);
    }
    catch (const boost::interprocess::interprocess_exception& error)
    {
        throw Failure(kNoSegments, std::string("no segment can be made to look at: ") + error.what());
    }
}

Json ToJson(const layout::Facts& facts)
{
    Json list = Json::array();
    for (const layout::Fact& fact : facts) list.push_back({{"name", fact.name}, {"value", fact.value}});
    return list;
}

Run BuildFingerprint(CLI::App&)
{
    return [](Context&) -> Answer
    {
        const layout::Facts facts = Describe();
        return {{{"verb", "fingerprint"},
                 {"fingerprint", layout::Fingerprint(facts)},
                 {"facts", ToJson(facts)},
                 {"tools", ToJson(layout::Tools())}},
                layout::Text(facts)};
    };
}
}  // namespace

std::vector<Verb> LayoutVerbs()
{
    return {{"fingerprint", "Print the layout of the shared segments",
             "ipodctl fingerprint | tail -n 1\nipodctl fingerprint --json | jq -r .fingerprint", BuildFingerprint}};
}
}  // namespace ctl
