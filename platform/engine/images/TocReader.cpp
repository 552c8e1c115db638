// From a .toc file to a disc.
#include "images/ReadImage.hpp"
#include "images/TocTrack.hpp"

#include <algorithm>

namespace engine {
namespace {

bool takeHeader(TocWords& words, ImageLayout& image, TocText& texts, SessionFormat& format) {
    if (words.take("CATALOG")) {
        const std::string text = words.takeText("the catalog number");
        const auto number = catalogNumberOf(text);
        if (!number) words.refuse(inQuotes(text) + " is no catalog number: it has 13 digits.");
        image.mediaCatalogNumber = *number;
        return true;
    }
    if (words.take("CD_TEXT")) {
        texts.take(words, 0);
        return true;
    }
    if (words.take("CD_I")) {
        format = SessionFormat::CDI;
        return true;
    }
    // Which of these the session is shows in its tracks.
    return words.take("CD_DA") || words.take("CD_ROM") || words.take("CD_ROM_XA");
}

} // namespace

ImageLayout readTocFile(const std::string& path) {
    const Sheet sheet(path);
    TocWords words(sheet);
    ImageLayout image;
    TocText texts;
    SessionFormat format = SessionFormat::Plain;
    std::vector<TocTrack> tracks;
    while (!words.atEnd()) {
        if (words.take("TRACK")) {
            if (tracks.size() == maximumTracks) words.refuse("a disc has at most 99 tracks.");
            tracks.emplace_back(words, tracks.size() + 1);
        } else if (tracks.empty() ? !takeHeader(words, image, texts, format) : !tracks.back().take(texts)) {
            words.refuse(
                "the word " + inQuotes(words.takeWord()) +
                (tracks.empty() ? " is not known before the first TRACK." : " is not known in a track."));
        }
    }
    if (tracks.empty()) words.refuse("the file has no tracks.");
    Session session;
    for (TocTrack& track : tracks) {
        session.tracks.push_back(track.made(session.tracks.empty()));
        session.tracks.back().sessionFormat = format;
    }
    const bool hasSound =
        std::any_of(tracks.begin(), tracks.end(), [](const TocTrack& each) { return each.isAudio(); });
    if (hasSound) image.cdText = texts.packs(tracks.size());
    image.layout.sessions.push_back(std::move(session));
    return image;
}

} // namespace engine
