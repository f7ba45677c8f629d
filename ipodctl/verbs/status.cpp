// Prints the player status on one screen and all details of the playing track, and saves its artwork.
#include <cstdio>

#include "events/events.h"
#include "events/format.h"
#include "output/fields_json.h"
#include "output/output.h"
#include "output/text.h"
#include "picture/picture.h"
#include "player/player.h"
#include "screen/status_screen.h"
#include "session/loop.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr int kNear = 2;

struct StatusOptions
{
    Art art = Art::OnTerminal;
    double listen = 0;
    bool watch = false;
    bool keys = false;
    std::string format;  ///< template for one line; empty for the full screen
};

CLI::Option* AddKeys(CLI::App& app, const std::shared_ptr<StatusOptions>& options)
{
    return app.add_flag("--keys", options->keys, "Print one KEY=VALUE per line: the values of --json, for scripts");
}

// Formats the members of an answer as "track.title=Blue", one per line. Unknown values are empty.
std::string KeysText(const Json& json, const std::string& prefix = "")
{
    std::string text;
    for (const auto& [name, value] : json.items())
    {
        const bool nested = value.is_structured() && !value.empty();
        text += nested ? KeysText(value, prefix + name + ".")
                       : prefix + name + "=" + (value.is_structured() ? "" : Shown(value)) + "\n";
    }
    return text;
}

Answer AnswerWith(const Output& out, const Json& json, const StatusOptions& options,
                  const std::function<std::string()>& text)
{
    if (out.json()) return {json, ""};
    if (!options.keys) return {json, text()};
    std::string lines = KeysText(json);
    lines.pop_back();
    return {json, lines};
}

void AddArt(CLI::App& app, const std::shared_ptr<StatusOptions>& options)
{
    auto* const always = app.add_flag_callback(
        "--art",
        [options]
        {
            if (!CanDraw()) throw CLI::ValidationError("--art", "this build cannot draw images");
            options->art = Art::Always;
        },
        "Draw the artwork even if standard output is not a terminal");
    app.add_flag_callback(
           "--no-art", [options] { options->art = Art::Never; }, "Do not draw the artwork")
        ->excludes(always);
}

// Processes events for a while: battery and calls are reported by events only.
void Listen(Session& session, double seconds)
{
    if (seconds <= 0) return;
    session.Ready();
    Loop loop;
    if (loop.Run(seconds) == Ending::Interrupted) throw Interrupted{};
}

void Warn(const std::string& text)
{
    if (!text.empty()) std::fprintf(stderr, "ipodctl: %s\n", Printable(text).c_str());
}

// Prints one line formatted with a template, with the same fields as 'ipodctl events --format'.
Answer ShowLine(Context& context, const StatusOptions& options)
{
    if (context.out.json()) throw Failure(kUsage, "--json cannot be used with --format");
    const Format format = Format::Parse(options.format, EventFieldNames());
    Listen(context.session, options.listen);
    const ipodkit::StatePtr state = context.session.Ready().State();
    Warn(NotReported(*state));
    EventFields fields;
    fields.Reset(*state);
    context.out.Text(format.Render(fields.OfPlayer()) + "\n");
    return {};
}

Answer ShowStatus(Context& context, const StatusOptions& options)
{
    if (!options.format.empty()) return ShowLine(context, options);
    if (context.out.json() && options.keys) throw Failure(kUsage, "--json cannot be used with --keys");
    const auto show = [&](const Status& status) -> Answer
    {
        Json json{{"verb", "status"}};
        json.update(StatusJson(status));
        return AnswerWith(context.out, json, options, [&] { return StatusText(status, context.out, options.art); });
    };
    Listen(context.session, options.listen);
    if (options.watch)
    {
        Watch(context, kNear, show);
        return {};
    }
    const Status status = ReadStatus(context.session, kNear);
    Warn(NotReported(*status.state));
    Warn(status.nearRefusal.empty() ? "" : "the service did not report the queue: " + status.nearRefusal);
    return show(status);
}

Run BuildStatus(CLI::App& app)
{
    const auto options = Argument<StatusOptions>();
    AddArt(app, options);
    auto* const listen = app.add_option("--listen", options->listen,
                                        "Wait this long for events first, because only they report battery and calls");
    listen->check(Seconds());
    auto* const watch = app.add_flag("--watch", options->watch, "Keep printing every change until Ctrl-C");
    watch->excludes(listen);
    auto* const keys = AddKeys(app, options);
    keys->excludes(watch);
    app.add_option("--format", options->format, "Print one line formatted with a template, as in 'ipodctl events'")
        ->check(cli::NonEmpty())
        ->excludes(watch)
        ->excludes(keys);
    return [options](Context& context) { return ShowStatus(context, *options); };
}

Json InfoJson(const Status& status)
{
    const Json all = StatusJson(status);
    Json json{{"verb", "info"}};
    for (const char* name : {"state", "position_ms", "length_ms", "index", "count", "track", "picture"})
        json[name] = all[name];
    return json;
}

Run BuildInfo(CLI::App& app)
{
    const auto options = Argument<StatusOptions>();
    AddArt(app, options);
    AddKeys(app, options);
    return [options](Context& context) -> Answer
    {
        if (context.out.json() && options->keys) throw Failure(kUsage, "--json cannot be used with --keys");
        const Status status = ReadStatus(context.session, 0);
        RequireTrackReported(*status.state);
        if (!HasTrack(status) || status.state->trackIndex.value_or(-1) < 0) RefuseNothingLoaded();
        return AnswerWith(context.out, InfoJson(status), *options,
                          [&] { return InfoText(status, context.out, options->art); });
    };
}

[[noreturn]] void RefuseNoPicture(Session& session)
{
    const bool has = RequireTrack(*session.Ready().State()).track.HasArtwork();
    throw Failure(kNothingDone, has ? "the playing track has artwork, but the service did not deliver it"
                                    : "the playing track has no artwork");
}

ipodkit::ArtworkChanged ReadArtwork(Session& session)
{
    ipodkit::ArtworkChanged artwork = session.Ask(session.Ready().Commands().Artwork());
    if (artwork.picture == nullptr) RefuseNoPicture(session);
    return artwork;
}

void CheckWhole(const ipodkit::Picture& picture)
{
    if (!IsWhole(picture.type, picture.bytes))
        throw ToFailure({ipodkit::ErrorKind::BadReply,
                         "the image is incomplete after " + Count(static_cast<int>(picture.Size()), "byte", "bytes")});
}

Answer WriteOut(Output& out, const std::vector<unsigned char>& image)
{
    if (out.terminal())
        throw Failure(kUsage, "cannot write an image to a terminal", "redirect the output, or give a file");
    out.Raw(image.data(), image.size());
    return {};
}

Answer Save(Context& context, const std::string& file)
{
    const ipodkit::ArtworkChanged artwork = ReadArtwork(context.session);
    const ipodkit::Picture& picture = *artwork.picture;
    CheckWhole(picture);
    if (file == "-") return WriteOut(context.out, picture.bytes);
    const std::string path = FileIn(file, "artwork", Extension(picture.bytes));
    WriteFile(path, picture.bytes);
    Json json{{"verb", "art"}, {"file", path}};
    json.update(ctl::ToJson(artwork));
    return {json, Printable(path) + ": " + ArtworkLine(artwork)};
}

Run BuildArt(CLI::App& app)
{
    const auto file = Argument<std::string>("artwork");
    auto* const place = app.add_option(
        "file", *file,
        "File to write (default: artwork), - for standard output. In a folder, the file is \"artwork\"; a name without "
        "extension gets that of the image type");
    app.add_option("--out", *file, "Same as the argument")->type_name("FILE")->excludes(place);
    return [file](Context& context)
    {
        if (context.out.json() && *file == "-")
            throw Failure(kUsage, "--json cannot be used with '-', which writes the image");
        return Save(context, *file);
    };
}
}  // namespace

std::vector<Verb> StatusVerbs()
{
    return {
        {"status", "Print track, modes, queue, devices, battery, and calls",
         "ipodctl status\nipodctl status --watch\nipodctl status --listen 2\n"
         "ipodctl status --json | jq -r .track.title\n"
         "ipodctl status --format '{{ state }}: {{ title }} {{ duration(position) }}'",
         BuildStatus},
        {"info", "Print all details of the playing track", "ipodctl info\nipodctl info --json", BuildInfo},
        {"art", "Save the artwork of the playing track",
         "ipodctl art\nipodctl art /tmp/cover\nipodctl art --out ~/Pictures/\nipodctl art - | sha256sum", BuildArt}};
}
}  // namespace ctl
