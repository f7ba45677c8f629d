// The picture of the playing track.
#include "output/fields_json.h"
#include "output/file.h"
#include "output/text.h"
#include "picture/picture.h"
#include "player/playing.h"
#include "player/track.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
[[noreturn]] void RefuseNoPicture(Session& session)
{
    const bool has = RequireTrack(session).track.HasArtwork();
    throw Failure(kNothingDone, has ? "the playing track has a picture, but the service did not hand it over"
                                    : "the playing track has no picture");
}

[[noreturn]] void RefuseBroken(const std::string& why)
{
    throw Failure(kServiceLost, "the iPod service sent a broken answer: " + why);
}

// The core's call, because its answer includes what the service reports about the artwork.
QBXTrackArtwork ReadArtwork(Session& session)
{
    QBXTrackArtwork artwork = session.Ask([](IQBXIpodPlayer& player) { return player.GetPlayingTrackAlbumArtwork(); });
    if (artwork.word1 != 0 || artwork.image.empty()) RefuseNoPicture(session);
    // An answer of another type leaves the record empty, and in the shared memory there is earlier artwork.
    if (artwork.word2 == 0) RefuseBroken("its artwork record is empty");
    return artwork;
}

void CheckWhole(const ipodkit::Picture& picture)
{
    if (!IsWhole(picture.type, picture.bytes))
        RefuseBroken("the image has no end after " + Count(static_cast<int>(picture.bytes.size()), "byte", "bytes"));
}

Answer WriteOut(Output& out, const QBXTrackArtwork& artwork)
{
    if (out.terminal()) throw Failure(kUsage, "a picture does not go to a terminal; redirect it, or give a file");
    out.Raw(artwork.image.data(), artwork.image.size());
    return {};
}

ipodkit::ArtworkChanged Examined(const QBXTrackArtwork& artwork)
{
    return {true, std::make_shared<const ipodkit::Picture>(ipodkit::Examine(artwork.image)), artwork.word2,
            artwork.word3, artwork.word4};
}

Answer Save(Context& context, const std::string& file)
{
    const QBXTrackArtwork artwork = ReadArtwork(context.session);
    const ipodkit::ArtworkChanged examined = Examined(artwork);
    CheckWhole(*examined.picture);
    if (file == "-") return WriteOut(context.out, artwork);
    const std::string path = FileIn(file, "artwork", Extension(examined.picture->type));
    WriteFile(path, artwork.image);
    Json json{{"verb", "art"}, {"file", path}};
    json.update(ToJson(examined));
    return {json, Printable(path) + ": " + ArtworkLine(examined)};
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

std::vector<Verb> ArtVerbs()
{
    return {{"art", "Save the artwork of the playing track",
             "ipodctl art\nipodctl art /tmp/cover\nipodctl art --out ~/Pictures/\nipodctl art - | sha256sum",
             BuildArt}};
}
}  // namespace ctl
