// disc-drives verify: reads every block back and compares it with what the medium's description says.
#include "Commands.hpp"
#include "Console.hpp"
#include "Describe.hpp"
#include "FileSystemCheck.hpp"
#include "Sizes.hpp"
#include "Table.hpp"
#include "TrackSum.hpp"
#include "Utf8.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace drives {
namespace {

using engine::inQuotes;

struct TrackResult {
    uint32_t session = 0;
    engine::TrackInfo track;
    FileSystemReport files;
    std::string problem; ///< empty: good
};

struct Result {
    std::string drive;
    std::optional<engine::MediumInfo> medium;
    std::vector<TrackResult> tracks;
    std::string problem; ///< of the medium as a whole

    bool isGood() const {
        return problem.empty() && std::all_of(tracks.begin(), tracks.end(),
                                              [](const TrackResult& each) { return each.problem.empty(); });
    }
};

constexpr size_t pieceBlocks = 1024, pageBytes = 4096;
constexpr size_t pieceBytes = pieceBlocks * (engine::sectorBytes + engine::subchannelBytes);
static_assert(pieceBytes % pageBytes == 0);

uint64_t bytesOf(const engine::MediumInfo& medium) {
    uint64_t bytes = 0;
    for (const engine::SessionInfo& session : medium.sessions)
        for (const engine::TrackInfo& track : session.tracks)
            bytes += track.blocks * track.blockBytes();
    return bytes;
}

// Every block of a track, in order; what they add up to goes into `sum`.
std::string readAll(engine::MediumReader& reader, const engine::TrackInfo& track, Progress& progress,
                    engine::TrackSum& sum) {
    const size_t each = track.blockBytes();
    // Readers go past the page cache when the buffer starts at a page.
    const std::unique_ptr<std::byte, decltype(&std::free)> pages(
        static_cast<std::byte*>(std::aligned_alloc(pageBytes, pieceBytes)), std::free);
    if (!pages) throw std::bad_alloc();
    const std::span buffer(pages.get(), pieceBlocks * each);
    uint64_t block = 0;
    while (block < track.blocks) {
        checkInterruption();
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(pieceBlocks, track.blocks - block));
        const auto got = reader.read(track, static_cast<int64_t>(block), buffer.first(wanted * each));
        if (!got) return got.error().message;
        if (*got < each)
            return "it ends after " + std::to_string(block) + " of " + std::to_string(track.blocks) +
                   " blocks";
        block += *got / each;
        sum.add(buffer.first(*got));
        progress.add(*got);
    }
    return {};
}

bool readExactly(engine::MediumReader& reader, const engine::TrackInfo& track, uint64_t block,
                 std::span<std::byte> buffer) {
    while (!buffer.empty()) {
        const auto got = reader.read(track, static_cast<int64_t>(block), buffer);
        if (!got || *got < engine::blockSize) return false;
        block += *got / engine::blockSize;
        buffer = buffer.subspan(*got);
    }
    return true;
}

// Blocks of the disc, wherever the track is that holds them: files of earlier sessions are shared.
BlockReader discBlocks(engine::MediumReader& reader, const engine::MediumInfo& medium) {
    return [&](uint64_t block, std::span<std::byte> buffer) {
        for (const engine::SessionInfo& session : medium.sessions)
            for (const engine::TrackInfo& track : session.tracks) {
                if (track.form != engine::BlockForm::Data && track.form != engine::BlockForm::Mode2Form1)
                    continue;
                if (block < track.startBlock || block >= track.startBlock + track.blocks) continue;
                return readExactly(reader, track.withoutSubchannel(), block - track.startBlock, buffer);
            }
        return false;
    };
}

bool mayHoldFiles(const engine::TrackInfo& track) {
    return track.form == engine::BlockForm::Data || track.form == engine::BlockForm::Mode2Form1;
}

void checkFiles(engine::MediumReader& reader, const engine::MediumInfo& medium, TrackResult& result) {
    const engine::TrackInfo& track = result.track;
    const BlockReader blocks = discBlocks(reader, medium);
    result.files = checkFileSystem(blocks, track.startBlock, track.startBlock + track.blocks);
    if (!result.files.problem.empty()) result.problem = "in its file system " + result.files.problem;
    // A description that names a volume was written with one.
    if (!result.files.isISO9660 && !track.volumeName.empty())
        result.problem = "its file system " + inQuotes(track.volumeName) + " is not there";
}

void verifyTrack(engine::MediumReader& reader, const engine::MediumInfo& medium, TrackResult& result,
                 Progress& progress) {
    const engine::TrackInfo& track = result.track;
    if (track.startBlock + track.blocks > medium.capacityBlocks) {
        result.problem = "it lies behind the end of the medium";
        return;
    }
    engine::TrackSum sum;
    result.problem = readAll(reader, track, progress, sum);
    if (!track.isComplete && result.problem.empty()) result.problem = "it was not written to its end";
    if (result.problem.empty() && mayHoldFiles(track)) checkFiles(reader, medium, result);
    // Last, because whatever else is wrong says more.
    if (result.problem.empty() && track.sum && sum.value() != *track.sum)
        result.problem = "its bytes are not those that were burned";
}

Result verifyDrive(const Common& common, const Found& found) {
    Result result;
    result.drive = found.name;
    if (!found.drive) {
        result.problem = found.problem.message;
        return result;
    }
    const Exclusive mine(*found.drive);
    auto medium = found.drive->readMedium();
    if (!medium) {
        result.problem = medium.error().message;
        return result;
    }
    result.medium = *std::move(medium);
    if (!result.medium) return result;
    if (result.medium->state == engine::MediumState::Incomplete)
        result.problem = "The medium is incomplete: a burn was cut off or failed. Don't trust what is on it.";
    if (result.medium->sessions.empty()) return result;
    auto reader = take(found.drive->openMedium());
    Progress progress("Reading " + engine::printable(found.name), bytesOf(*result.medium), common.json);
    for (const engine::SessionInfo& session : result.medium->sessions)
        for (const engine::TrackInfo& track : session.tracks) {
            result.tracks.push_back({session.number, track, {}, {}});
            verifyTrack(*reader, *result.medium, result.tracks.back(), progress);
        }
    return result;
}

// One that can't be verified, in use by another program for instance, is told of like a bad one; the others' turn comes.
Result verifyOneOfAll(const Common& common, const Found& found) {
    try {
        return verifyDrive(common, found);
    } catch (const engine::Failure& failure) {
        Result result;
        result.drive = found.name;
        result.problem = failure.error().message;
        return result;
    }
}

Json jsonOf(const Result& result) {
    Json tracks = Json::array();
    for (const TrackResult& each : result.tracks)
        tracks.push_back({{"session", each.session},
                          {"number", each.track.number},
                          {"mode", nameOf(each.track)},
                          {"blocks", each.track.blocks},
                          {"fileSystem", each.files.isISO9660},
                          {"volumeName", each.files.volumeName},
                          {"files", each.files.files},
                          {"folders", each.files.folders},
                          {"notLookedInto", each.files.others},
                          {"compared", each.track.sum.has_value()},
                          {"good", each.problem.empty()},
                          {"problem", each.problem}});
    Json json = {{"name", result.drive},    {"medium", nullptr},         {"state", nullptr},
                 {"good", result.isGood()}, {"problem", result.problem}, {"tracks", std::move(tracks)}};
    if (result.medium) {
        json["medium"] = engine::factsOf(result.medium->kind).name;
        json["state"] = nameOf(result.medium->state);
    }
    return json;
}

std::string textOf(const Result& result) {
    const std::string name = engine::printable(result.drive);
    if (!result.medium)
        return name + ": " + (result.problem.empty() ? "There is no medium to verify." : result.problem) +
               '\n';
    const std::string kind(engine::factsOf(result.medium->kind).name);
    std::string text;
    if (!result.tracks.empty()) {
        Table table({{"Session", Table::Align::Right},
                     {"Track", Table::Align::Right},
                     {"Mode"},
                     {"Size", Table::Align::Right},
                     {"Files", Table::Align::Right},
                     {"Volume"},
                     {"Result"}});
        for (const TrackResult& each : result.tracks)
            table.add({std::to_string(each.session), std::to_string(each.track.number), nameOf(each.track),
                       sizeText(each.track.blocks * engine::bytesPerBlock(each.track.form)),
                       each.files.isISO9660 ? std::to_string(each.files.files) : "", each.files.volumeName,
                       each.problem.empty() ? "good" : each.problem});
        text += table.text();
    }
    for (const TrackResult& each : result.tracks)
        for (const std::string& other : each.files.others)
            text += name + ": The folders that track " + std::to_string(each.track.number) + " has in " +
                    other + " were not looked into.\n";
    text += name + ": ";
    if (result.medium->blank && result.tracks.empty()) return text + "The " + kind + " is blank.\n";
    if (result.isGood()) return text + "Every block of the " + kind + " can be read, and is as described.\n";
    return text + (result.problem.empty() ? "The " + kind + " is not as described." : result.problem) + '\n';
}

} // namespace

int verifyMedia(const Common& common, const std::string& name) {
    const std::vector<Found> all = name.empty() ? allDrives() : std::vector{driveNamed(name)};
    Json list = Json::array();
    bool good = true;
    for (const Found& each : all) {
        const Result result = name.empty() ? verifyOneOfAll(common, each) : verifyDrive(common, each);
        if (!name.empty() && !result.medium && result.problem.empty())
            engine::fail(engine::ErrorCode::MediaNotPresent,
                         "There is no disc in " + inQuotes(each.name) + " to verify; is the tray open?");
        good = good && result.isGood();
        list.push_back(jsonOf(result));
        if (!common.json) print(textOf(result));
    }
    if (common.json) printJson(Json{{"good", good}, {"drives", std::move(list)}});
    return good ? 0 : 1;
}

} // namespace drives
