// Prints the contents and the layout of the shared memory.
#include <QBXIpodShareMemory.h>

#include <algorithm>
#include <cstdio>

#include "output/text.h"
#include "segments/layout.h"
#include "segments/segments.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
std::string ModeText(mode_t mode)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%04o", static_cast<unsigned>(mode));
    return text;
}

// Checks the object's type first, to open nothing but shared memory.
SegmentContents ReadIfThere(const SegmentPlan& plan, const SegmentObject& object)
{
    SegmentContents contents;
    if (!object.exists) contents.problem = "it does not exist";
    if (object.exists && !object.isMemory) contents.problem = "it exists and is not shared memory";
    return contents.problem.empty() ? ReadContents(plan) : contents;
}

Json ToJson(const SegmentPlan& plan, const SegmentObject& object, const SegmentContents& contents)
{
    Json vectors = Json::array();
    for (const VectorContents& vector : contents.vectors)
        vectors.push_back({{"name", vector.name},
                           {"kind", vector.isNames ? "names" : "bytes"},
                           {"elements", vector.elements},
                           {"capacity", vector.capacity},
                           {"problem", vector.problem}});
    return {{"name", plan.name},           {"there", object.exists},        {"bytes", object.size},
            {"free", contents.free},       {"mode", ModeText(object.mode)}, {"owner", object.owner},
            {"objects", contents.objects}, {"problem", contents.problem},   {"vectors", vectors}};
}

std::string ToText(const SegmentPlan& plan, const SegmentObject& object, const SegmentContents& contents,
                   const Output& out)
{
    std::string text = out.Paint(Colour::Bold, plan.name);
    if (object.exists)
        text += ": " + std::to_string(object.size) + " bytes, " + std::to_string(contents.free) + " free, mode " +
                ModeText(object.mode) + ", owner " + std::to_string(object.owner);
    if (!contents.problem.empty()) return text + ": " + out.Paint(Colour::Red, Printable(contents.problem));
    std::vector<std::vector<std::string>> rows;
    for (const VectorContents& vector : contents.vectors)
        rows.push_back({"  " + vector.name, PadLeft(std::to_string(vector.elements), 7),
                        (vector.isNames ? "names, room for " : "bytes, room for ") + std::to_string(vector.capacity),
                        vector.problem});
    const auto paint = [&out](std::size_t, std::vector<std::string>& cells)
    {
        if (cells.size() > 3) cells[3] = out.Paint(Colour::Red, cells[3]);
    };
    return text + "\n" + Table(rows, out.width(), paint);
}

ExitCode Judged(const SegmentObject& object, const SegmentContents& contents)
{
    if (!object.exists) return kNothingDone;
    const bool well =
        contents.problem.empty() && std::all_of(contents.vectors.begin(), contents.vectors.end(),
                                                [](const VectorContents& vector) { return vector.problem.empty(); });
    return well ? kDone : kNoSegments;
}

Answer ShowSegments(const Output& out)
{
    Answer answer{{{"verb", "shm"}, {"segments", Json::array()}}, "", kDone};
    const char* hint = "";
    for (const SegmentPlan& plan : SegmentPlans())
    {
        const SegmentObject object = Inspect(plan.name);
        const SegmentContents contents = ReadIfThere(plan, object);
        answer.json["segments"].push_back(ToJson(plan, object, contents));
        answer.text += (answer.text.empty() ? "" : "\n") + ToText(plan, object, contents, out);
        answer.code = std::max(answer.code, Judged(object, contents));
        if (!object.exists) hint = "\nhint: start the service, which creates the shared memory";
    }
    answer.text += hint;
    return answer;
}

std::vector<std::string> VectorNames()
{
    std::vector<std::string> names;
    for (const SegmentPlan& plan : SegmentPlans())
    {
        names.insert(names.end(), plan.lists.begin(), plan.lists.end());
        names.insert(names.end(), plan.buffers.begin(), plan.buffers.end());
    }
    return names;
}

std::string NumberedLines(const std::vector<std::string>& names, int width)
{
    std::vector<std::vector<std::string>> rows;
    const int digits = Width(std::to_string(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i)
        rows.push_back({PadLeft(std::to_string(i), digits), Printable(names[i])});
    return Table(rows, width);
}

Answer DumpVector(const std::string& name, const Output& out)
{
    const auto holds = [&](const std::vector<const char*>& names)
    { return std::any_of(names.begin(), names.end(), [&](const char* each) { return name == each; }); };
    const auto& plans = SegmentPlans();
    const auto plan = std::find_if(plans.begin(), plans.end(),
                                   [&](const SegmentPlan& each) { return holds(each.lists) || holds(each.buffers); });
    if (!Inspect(plan->name).isMemory)
        throw Failure(kNoSegments, std::string("segment ") + plan->name + " does not exist", "start the service");
    const std::string bytes = ReadVector(*plan, name);
    Json json{{"verb", "shm"}, {"vector", name}};
    if (holds(plan->buffers))
    {
        json["hex"] = Hex(bytes);
        return {json, Hexdump(bytes)};
    }
    json["names"] = NamesIn(bytes);
    return {json, NumberedLines(NamesIn(bytes), out.width())};
}

Run BuildShm(CLI::App& app)
{
    const auto vector = Argument<std::string>();
    app.add_option("--dump", *vector, "Show the names or bytes in a vector: " + Joined(VectorNames(), ", "))
        ->type_name("VECTOR")
        ->check(OneOf(VectorNames()));
    return [vector](Context& context)
    { return vector->empty() ? ShowSegments(context.out) : DumpVector(*vector, context.out); };
}
}  // namespace

std::vector<Verb> SharedMemoryVerbs()
{
    return {{"shm", "Print the contents of the shared memory",
             "ipodctl shm\nipodctl shm --dump VecDBListShareMemory\nipodctl shm --dump VecEapReadBufferShareMemory",
             BuildShm}};
}

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
        throw Failure(kNoSegments, std::string("cannot create a segment to measure: ") + error.what());
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
