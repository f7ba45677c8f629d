// Prints the contents and the layout of the shared memory.
#include <ipodkit/segments.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "output/text.h"
#include "segments/layout.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
using ipodkit::SegmentContents;
using ipodkit::SegmentObject;
using ipodkit::VectorContents;

const char* KindIn(const std::string& segment)
{
    return segment == kListSegmentName ? "names" : "bytes";
}

Json ToJson(const std::string& segment, const SegmentObject& object, const SegmentContents& contents)
{
    Json vectors = Json::array();
    for (const VectorContents& vector : contents.vectors)
        vectors.push_back({{"name", vector.name},
                           {"kind", KindIn(segment)},
                           {"elements", vector.elements},
                           {"capacity", vector.capacity},
                           {"problem", vector.problem}});
    return {{"name", segment},
            {"there", object.exists},
            {"bytes", object.size},
            {"free", contents.free},
            {"mode", ModeText(object.mode)},
            {"owner", object.owner},
            {"objects", contents.objects},
            {"problem", contents.problem},
            {"vectors", vectors}};
}

std::string ToText(const std::string& segment, const SegmentObject& object, const SegmentContents& contents,
                   const Output& out)
{
    std::string text = out.Paint(Color::Bold, segment);
    if (object.exists)
        text += ": " + std::to_string(object.size) + " bytes, " + std::to_string(contents.free) + " free, mode " +
                ModeText(object.mode) + ", owner " + std::to_string(object.owner);
    if (!contents.problem.empty()) return text + ": " + out.Paint(Color::Red, Printable(contents.problem));
    std::vector<std::vector<std::string>> rows;
    for (const VectorContents& vector : contents.vectors)
        rows.push_back({"  " + vector.name, PadLeft(std::to_string(vector.elements), 7),
                        KindIn(segment) + (", room for " + std::to_string(vector.capacity)), vector.problem});
    const auto paint = [&out](std::size_t, std::vector<std::string>& cells)
    {
        if (cells.size() > 3) cells[3] = out.Paint(Color::Red, cells[3]);
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
    for (const char* segment : {kListSegmentName, kBufferSegmentName})
    {
        const SegmentObject object = ipodkit::InspectSegment(segment);
        const SegmentContents contents = ipodkit::ReadSegment(segment);
        answer.json["segments"].push_back(ToJson(segment, object, contents));
        answer.text += (answer.text.empty() ? "" : "\n") + ToText(segment, object, contents, out);
        answer.code = std::max(answer.code, Judged(object, contents));
        if (!object.exists) hint = "\nhint: start the service, which creates the shared memory";
    }
    answer.text += hint;
    return answer;
}

std::vector<std::string> VectorNames()
{
    std::vector<std::string> names;
    for (const ipodkit::VectorName& vector : ipodkit::kVectorNames) names.emplace_back(vector.name);
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

template <class Content>
Content OrFailure(ipodkit::Result<Content> content)
{
    if (!content) throw Failure(kNoSegments, content.error().reason);
    return *std::move(content);
}

Answer DumpVector(const std::string& name, const Output& out)
{
    const auto* const vector = std::find_if(std::begin(ipodkit::kVectorNames), std::end(ipodkit::kVectorNames),
                                            [&](const ipodkit::VectorName& each) { return each.name == name; });
    if (!ipodkit::InspectSegment(vector->segment).exists)
        throw Failure(kNoSegments, std::string("segment ") + vector->segment + " does not exist", "start the service");
    Json json{{"verb", "shm"}, {"vector", name}};
    if (std::strcmp(vector->segment, kBufferSegmentName) == 0)
    {
        const std::vector<unsigned char> bytes = OrFailure(ipodkit::ReadBytes(name));
        const std::string_view content(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        json["hex"] = Hex(content);
        return {json, Hexdump(content)};
    }
    const std::vector<std::string> names = OrFailure(ipodkit::ReadNames(name));
    json["names"] = names;
    return {json, NumberedLines(names, out.width())};
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
            ipodkit::kVectorNames, kListSegmentSize, kBufferSegmentSize);
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
