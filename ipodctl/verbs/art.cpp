// Saves the artwork of the playing track.
#include "output/fields_json.h"
#include "output/file.h"
#include "output/text.h"
#include "picture/picture.h"
#include "player/player.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
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
    const std::string path = FileIn(file, "artwork", Extension(picture.type));
    WriteFile(path, picture.bytes);
    Json json{{"verb", "art"}, {"file", path}};
    json.update(ToJson(artwork));
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

std::vector<Verb> ArtVerbs()
{
    return {{"art", "Save the artwork of the playing track",
             "ipodctl art\nipodctl art /tmp/cover\nipodctl art --out ~/Pictures/\nipodctl art - | sha256sum",
             BuildArt}};
}
}  // namespace ctl
