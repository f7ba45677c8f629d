#include "segments/segment_contents.h"

#include <QBXIpodShareMemory.h>

#include <algorithm>
#include <cstring>
#include <exception>

#include "output/failure.h"
#include "output/output.h"
#include "segments/segment_probe.h"

namespace ctl
{
namespace
{
namespace bip = boost::interprocess;

constexpr std::size_t kEntrySize = sizeof(PlayListSongNameStr);
constexpr char kDamaged[] = "its elements lie outside of the segment";

struct Range
{
    const char* begin;
    std::size_t size;
};

// Whether a part of memory lies in the segment.
bool Holds(const QBXSharedSegment& segment, const Range& range)
{
    const char* const begin = static_cast<const char*>(segment.get_address());
    const char* const end = begin + segment.get_size();
    return range.size == 0 ||
           (range.begin >= begin && range.begin < end && range.size <= static_cast<std::size_t>(end - range.begin));
}

template <class Vector>
Json Described(QBXSharedSegment& segment, const char* name)
{
    const Vector* const vector = segment.find<Vector>(name).first;
    Json json{{"name", name}, {"elements", 0}, {"capacity", 0}, {"problem", vector == nullptr ? "not there" : ""}};
    if (vector == nullptr) return json;
    json["elements"] = vector->size();
    json["capacity"] = vector->capacity();
    const std::size_t most = segment.get_size() / sizeof(typename Vector::value_type);
    const Range range{reinterpret_cast<const char*>(vector->data()),
                      std::min(vector->capacity(), most + 1) * sizeof(typename Vector::value_type)};
    if (vector->size() > vector->capacity() || !Holds(segment, range)) json["problem"] = kDamaged;
    return json;
}

std::string DescribeAll(const SegmentPlan& plan)
{
    try
    {
        QBXSharedSegment segment(bip::open_copy_on_write, plan.name);
        if (!segment.check_sanity()) return Dump({{"problem", "its inside is damaged"}});
        Json json{{"problem", ""}, {"free", segment.get_free_memory()}, {"objects", segment.get_num_named_objects()}};
        json["vectors"] = Json::array();
        for (const char* name : plan.lists) json["vectors"].push_back(Described<QBXStringPageVector>(segment, name));
        for (const char* name : plan.buffers) json["vectors"].push_back(Described<QBXByteVector>(segment, name));
        return Dump(json);
    }
    catch (const std::exception& error)
    {
        return Dump({{"problem", std::string("it cannot be opened: ") + error.what()}});
    }
}

// Behind a first letter that says whether these are the bytes or why there are none.
template <class Vector>
std::string Copied(QBXSharedSegment& segment, const std::string& name)
{
    const Vector* const vector = segment.find<Vector>(name.c_str()).first;
    if (vector == nullptr) return "Ethe segment has no vector " + name;
    const std::size_t most = segment.get_size() / sizeof(typename Vector::value_type);
    const Range range{reinterpret_cast<const char*>(vector->data()),
                      std::min(vector->size(), most + 1) * sizeof(typename Vector::value_type)};
    if (!Holds(segment, range)) return "E" + name + ": " + kDamaged;
    return "B" + std::string(range.begin, range.size);
}

bool IsIn(const std::vector<const char*>& names, const std::string& name)
{
    return std::any_of(names.begin(), names.end(), [&](const char* each) { return name == each; });
}

std::string CopyVector(const SegmentPlan& plan, const std::string& name)
{
    try
    {
        QBXSharedSegment segment(bip::open_copy_on_write, plan.name);
        return IsIn(plan.lists, name) ? Copied<QBXStringPageVector>(segment, name)
                                      : Copied<QBXByteVector>(segment, name);
    }
    catch (const std::exception& error)
    {
        return std::string("Ethe segment cannot be opened: ") + error.what();
    }
}
}  // namespace

SegmentContents ReadContents(const SegmentPlan& plan)
{
    const ChildOutcome outcome = RunInChild([&] { return DescribeAll(plan); });
    SegmentContents contents;
    if (outcome.end != ChildOutcome::End::Well) contents.problem = WhyUnreadable(outcome.end);
    const Json json = Json::parse(outcome.text, nullptr, false);
    if (!contents.problem.empty() || !json.is_object()) return contents;
    contents.problem = json["problem"];
    if (!contents.problem.empty()) return contents;
    contents.free = json["free"];
    contents.objects = json["objects"];
    for (const Json& each : json["vectors"])
        contents.vectors.push_back(
            {each["name"], IsIn(plan.lists, each["name"]), each["elements"], each["capacity"], each["problem"]});
    return contents;
}

std::string ReadVector(const SegmentPlan& plan, const std::string& name)
{
    const ChildOutcome outcome = RunInChild([&] { return CopyVector(plan, name); });
    if (outcome.end != ChildOutcome::End::Well)
        throw Failure(kNoSegments, std::string("segment ") + plan.name + ": " + WhyUnreadable(outcome.end));
    if (outcome.text.empty() || outcome.text[0] != 'B')
        throw Failure(kNoSegments, outcome.text.empty() ? "the vector cannot be read" : outcome.text.substr(1));
    return outcome.text.substr(1);
}

std::vector<std::string> NamesIn(const std::string& bytes)
{
    std::vector<std::string> names;
    for (std::size_t at = 0; at + kEntrySize <= bytes.size(); at += kEntrySize)
        names.emplace_back(bytes.data() + at, strnlen(bytes.data() + at, kEntrySize));
    return names;
}
}  // namespace ctl
