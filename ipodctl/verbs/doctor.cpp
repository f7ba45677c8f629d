// Diagnoses the bus, the service, and the shared-memory segments, and suggests remedies. Does not modify them.
#include <QBXIpodShareMemory.h>
#include <gio/gio.h>
#include <ipod_dbus.h>
#include <ipodkit/segments.h>
#include <ipodkit/sharing.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <fstream>

#include "output/text.h"
#include "session/session.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr std::size_t kScarce = 8;  // warn below 1/8 free: a growing vector needs more memory than it gains

struct SegmentPlan
{
    const char* what;
    const char* name;
    std::size_t size;
};

constexpr SegmentPlan kSegmentPlans[] = {{"lists", kListSegmentName, kListSegmentSize},
                                         {"buffers", kBufferSegmentName, kBufferSegmentSize}};

struct Finding
{
    const char* what;
    ExitCode code;  ///< kDone: ok; kNothingDone: warning; otherwise the exit code of a failing verb
    std::string text;
    std::string advice;
};

std::string Described(const ipodkit::SegmentObject& object)
{
    return std::to_string(object.size) + " bytes, mode " + ModeText(object.mode) + ", owner " +
           std::to_string(object.owner);
}

std::string Removal(const SegmentPlan& plan)
{
    return std::string("stop the service and all applications, then remove /dev/shm/") + plan.name;
}

std::string WhatIsWrongWith(const ipodkit::SegmentContents& contents)
{
    for (const ipodkit::VectorContents& vector : contents.vectors)
        if (!vector.problem.empty())
            return vector.exists ? vector.name + ": " + vector.problem : "it has no vector " + vector.name;
    return contents.problem;
}

Finding ExamineSegment(const SegmentPlan& plan)
{
    const ipodkit::SegmentObject object = ipodkit::InspectSegment(plan.name);
    const std::string remove = Removal(plan);
    if (!object.exists) return {plan.what, kNothingDone, "missing", "start the service, which creates it"};
    if (!object.isMemory) return {plan.what, kNoSegments, "it exists and is not shared memory", remove};
    const std::string description = Described(object);
    if (object.owner != geteuid())
        return {plan.what, kNoSegments, description + "; this process is user " + std::to_string(geteuid()),
                "run the service and its applications as one user"};
    const ipodkit::SegmentContents contents = ipodkit::ReadSegment(plan.name);
    const std::string wrong = WhatIsWrongWith(contents);
    if (!wrong.empty()) return {plan.what, kNoSegments, description + "; " + wrong, remove};
    if (contents.free < object.size / kScarce)
        return {plan.what, kNothingDone, description + ", only " + std::to_string(contents.free) + " bytes free",
                "data that does not fit is rejected, and vectors never shrink: send less at once, or " + remove};
    if (object.mode != 0644 || object.size != plan.size)
        return {plan.what, kNothingDone, description, "expected mode 0644 and " + std::to_string(plan.size) + " bytes"};
    return {plan.what, kDone, description + ", " + std::to_string(contents.vectors.size()) + " vectors, lock free", ""};
}

bool IsActivatable(GDBusConnection* bus)
{
    const VariantPtr reply = AskBus(bus, "ListActivatableNames", nullptr);
    if (reply == nullptr) return false;
    const gchar** names = nullptr;
    g_variant_get(reply.get(), "(^a&s)", &names);
    const bool found = g_strv_contains(names, kServiceName);
    g_free(names);
    return found;
}

// Returns why the service does not answer a call, empty if it does: a process that hangs still owns the name.
std::string WhyNoAnswer(Session& session, ExitCode& code)
{
    try
    {
        session.Ask(session.Commands().PlayStatus());
    }
    catch (const Failure& failure)
    {
        code = failure.code();
        return failure.what();
    }
    return {};
}

// Returns 0 if the bus daemon does not report the process.
pid_t ProcessOfService(GDBusConnection* bus)
{
    const VariantPtr reply = AskBus(bus, "GetConnectionUnixProcessID", g_variant_new("(s)", kServiceName));
    if (reply == nullptr) return 0;
    guint32 process = 0;
    g_variant_get(reply.get(), "(u)", &process);
    return static_cast<pid_t>(process);
}

// Detects a valid segment that is not the one mapped by the service.
void CompareWithService(Finding& finding, const SegmentPlan& plan, pid_t service)
{
    const ipodkit::SegmentUse use = ipodkit::UseOfSegment(plan.name, service);
    if (finding.code > kNothingDone || use != ipodkit::SegmentUse::Other) return;
    finding = {plan.what, kNoSegments,
               "the service (process " + std::to_string(service) + ") uses an object that was removed or replaced",
               Removal(plan) + ", and start them again"};
}

Finding ExamineService(Session& session, GDBusConnection* bus)
{
    const VariantPtr reply = AskBus(bus, "GetNameOwner", g_variant_new("(s)", kServiceName));
    if (reply == nullptr)
        return {"service", kNoService, std::string("nobody owns ") + kServiceName,
                "start the service, or ipod-simulator"};
    const gchar* name = nullptr;
    g_variant_get(reply.get(), "(&s)", &name);
    const std::string owner = std::string(kServiceName) + " is owned by " + name;
    ExitCode code = kDone;
    const std::string why = WhyNoAnswer(session, code);
    if (!why.empty()) return {"service", code, owner + ", but " + why, "restart it if it does not recover"};
    if (IsActivatable(bus))
        return {"service", kNothingDone, owner + ", and the bus may start it",
                "start it before the applications: they hang if the bus starts it and it fails"};
    return {"service", kDone, owner, ""};
}

bool IsStopped(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("State:\tT", 0) == 0 || line.rfind("State:\tt", 0) == 0) return true;
    return false;
}

// Others may read a shared list for a moment; a lock that persists belongs to a browser or to a stopped process.
Finding ExamineLock(const ipodkit::LockHolder& holder)
{
    const std::string process = std::to_string(holder.process);
    const std::string held = holder.what + " is held by process " + process + " (" + holder.program + ")";
    if (!IsStopped(holder.process)) return {"lock", kDone, held, ""};
    return {"lock", kNothingDone, held + ", which is stopped", "resume it (kill -CONT " + process + ") or kill it"};
}

// Probes the segments before connecting to the bus: the probe forks, and GDBus starts threads.
std::vector<Finding> Examine(Session& session)
{
    std::vector<Finding> segments;
    for (const SegmentPlan& plan : kSegmentPlans) segments.push_back(ExamineSegment(plan));
    std::vector<Finding> all;
    try
    {
        GDBusConnection* const bus = session.Bus();
        all.push_back({"bus", kDone, "connected to the session bus", ""});
        all.push_back(ExamineService(session, bus));
        const pid_t service = ProcessOfService(bus);
        for (std::size_t i = 0; i < segments.size(); ++i) CompareWithService(segments[i], kSegmentPlans[i], service);
    }
    catch (const Failure& failure)
    {
        all.push_back({"bus", failure.code(), failure.what(), failure.hint()});
    }
    all.insert(all.end(), segments.begin(), segments.end());
    for (const ipodkit::LockHolder& holder : ipodkit::LockHolders()) all.push_back(ExamineLock(holder));
    return all;
}

// Identifies incompatible builds by the bus contract and by the sizes that determine the segment layout.
std::string Fingerprint()
{
    GString* const xml = g_string_new(nullptr);
    g_dbus_interface_info_generate_xml(com_zarn_linux_ipod_interface_info(), 0, xml);
    gchar* const sum = g_compute_checksum_for_string(G_CHECKSUM_SHA256, xml->str, -1);
    const std::string contract(sum, 12);
    g_free(sum);
    g_string_free(xml, TRUE);
    return "contract " + contract + ", " + std::to_string(8 * sizeof(void*)) + " bits, manager " +
           std::to_string(sizeof(QBXSegmentManager)) + ", vector " + std::to_string(sizeof(QBXByteVector));
}

const char* StateName(ExitCode code)
{
    if (code == kDone) return "ok";
    return code == kNothingDone ? "warning" : "error";
}

// Prefers errors over warnings, and earlier findings over later ones: the bus precedes what depends on it.
ExitCode Worst(const std::vector<Finding>& findings)
{
    for (const Finding& finding : findings)
        if (finding.code > kNothingDone) return finding.code;
    const bool warned = std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.code != kDone; });
    return warned ? kNothingDone : kDone;
}

Json ToJson(const std::vector<Finding>& findings)
{
    Json checks = Json::array();
    for (const Finding& finding : findings)
        checks.push_back({{"check", finding.what},
                          {"state", StateName(finding.code)},
                          {"text", finding.text},
                          {"advice", finding.advice}});
    return {{"verb", "doctor"}, {"verdict", StateName(Worst(findings))}, {"checks", checks}, {"build", Fingerprint()}};
}

// Colors the states, which are the second column.
void PaintState(const Output& out, std::vector<std::string>& cells)
{
    if (cells.size() < 2) return;
    const Color color = cells[1].rfind("ok", 0) == 0        ? Color::Green
                        : cells[1].rfind("warning", 0) == 0 ? Color::Yellow
                        : cells[1].rfind("error", 0) == 0   ? Color::Red
                                                            : Color::Dim;
    cells[1] = out.Paint(color, cells[1]);
}

std::string ToText(const std::vector<Finding>& findings, const Output& out)
{
    std::vector<std::vector<std::string>> rows;
    for (const Finding& finding : findings)
    {
        rows.push_back({finding.what, StateName(finding.code), Printable(finding.text)});
        if (!finding.advice.empty()) rows.push_back({"", "hint", Printable(finding.advice)});
    }
    rows.push_back({"build", "", Fingerprint()});
    return Table(rows, INT_MAX, [&out](std::size_t, std::vector<std::string>& cells) { PaintState(out, cells); });
}

Run BuildDoctor(CLI::App&)
{
    return [](Context& context) -> Answer
    {
        const std::vector<Finding> findings = Examine(context.session);
        return {ToJson(findings), ToText(findings, context.out), Worst(findings)};
    };
}
}  // namespace

std::vector<Verb> DoctorVerbs()
{
    return {{"doctor", "Diagnose the bus, the service, and the shared memory",
             "ipodctl doctor\nipodctl doctor --json | jq -r '.checks[] | select(.state != \"ok\")'", BuildDoctor}};
}
}  // namespace ctl
