// What a drive tells of the medium in it.
#include "BurnLibrary.hpp"
#include "CapabilitiesPage.hpp"
#include "DriveQuestion.hpp"
#include "PhysicalDrive.hpp"
#include "PhysicalTarget.hpp"
#include "Sense.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <libburn/libburn.h>
#include <memory>
#include <set>
#include <thread>

namespace engine {
namespace {

constexpr int quietly = 1 << 1 | 1 << 2; // read without a message, without a second attempt
constexpr uint64_t runOutBlocks = 2;
constexpr int quietRunOut = quietly | 1 << 4; // and run-out is no error
constexpr int onceAndTold = 1 << 2;           // without a second attempt
constexpr uint64_t descriptorBlock = 16;
constexpr uint64_t alignment = 32;

bool readBlocks(burn_drive* drive, uint64_t block, std::span<char> bytes) {
    off_t count = 0;
    return burn_read_data(drive, static_cast<off_t>(block * blockSize), bytes.data(),
                          static_cast<off_t>(bytes.size()), &count, quietly) > 0;
}

// Whether nothing is found where readers look. A start that can't be read is none that nobody wrote, unless the drive says
// just that.
bool startsWithNothing(burn_drive* drive) {
    std::vector<char> start(32 * blockSize);
    off_t count = 0;
    dropLibraryMessages();
    if (burn_read_data(drive, 0, start.data(), static_cast<off_t>(start.size()), &count, onceAndTold) > 0)
        return std::all_of(start.begin(), start.end(), [](char each) { return each == 0; });
    const auto sense = senseOf(libraryError(ErrorCode::MediaInvalid, {}).sense);
    return sense && sense->key == blankCheckKey;
}

/// The ISO 9660 descriptor of a file system that begins at a block.
struct Volume {
    std::string name;
    uint64_t blocks = 0;
};

std::optional<Volume> volumeAt(burn_drive* drive, uint64_t block) {
    std::array<char, blockSize> bytes{};
    if (!readBlocks(drive, block + descriptorBlock, bytes)) return std::nullopt;
    if (std::memcmp(bytes.data(), "\1CD001", 6) != 0) return std::nullopt;
    Volume volume;
    volume.name.assign(bytes.data() + 40, 32);
    volume.name.erase(volume.name.find_last_not_of(' ') + 1);
    for (size_t index = 0; index < 4; ++index)
        volume.blocks |= uint64_t{static_cast<unsigned char>(bytes[80 + index])} << (8 * index);
    return volume;
}

std::vector<double> speedsOf(burn_drive* drive) {
    std::set<double> speeds;
    burn_speed_descriptor* list = nullptr;
    if (burn_drive_get_speedlist(drive, &list) > 0) {
        for (const burn_speed_descriptor* each = list; each != nullptr; each = each->next)
            if (each->write_speed > 0) speeds.insert(each->write_speed);
        burn_drive_free_speedlist(&list);
    }
    return {speeds.begin(), speeds.end()};
}

double currentSpeedOf(const std::string& path) {
    const Descriptor device(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const auto page = device ? readCapabilitiesPage(device.get()) : std::nullopt;
    return page ? page->writeSpeed : 0;
}

// Nobody closed what was written last. The library tells of it on a CD only, and takes other media for appendable.
bool isLastSessionOpen(const std::string& path) {
    const Descriptor device(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const auto last = device ? lastSessionIn(device.get()) : std::nullopt;
    return last == LastSession::Incomplete || last == LastSession::Damaged;
}

// What was found of the same track at the look before.
std::optional<uint64_t> blocksBefore(const MediumInfo* before, const TrackInfo& track) {
    if (before != nullptr)
        for (const SessionInfo& session : before->sessions)
            for (const TrackInfo& each : session.tracks)
                if (each.number == track.number && each.startBlock == track.startBlock &&
                    each.form == track.form &&
                    (each.blocks == track.blocks || each.blocks + runOutBlocks == track.blocks))
                    return each.blocks;
    return std::nullopt;
}

// The two blocks behind a track written at once belong to nobody. Who looks again and again at one disc doesn't have the drive
// go to the end of each track every time.
uint64_t withoutRunOut(burn_drive* drive, const TrackInfo& track, const MediumInfo* before) {
    if (track.blocks <= runOutBlocks) return track.blocks;
    if (const auto known = blocksBefore(before, track)) return *known;
    std::array<char, runOutBlocks * 2352> bytes{};
    off_t count = 0;
    const uint64_t block = track.startBlock + track.blocks - runOutBlocks;
    const int done =
        track.form == BlockForm::Audio
            ? burn_read_audio(drive, static_cast<int>(block), bytes.data(), sizeof bytes, &count, quietRunOut)
            : burn_read_data(drive, static_cast<off_t>(block * blockSize), bytes.data(),
                             static_cast<off_t>(runOutBlocks * blockSize), &count, quietRunOut);
    return done > 0 ? track.blocks : track.blocks - runOutBlocks;
}

TrackInfo describeTrack(burn_drive* drive, burn_track* track, uint32_t number, bool isCD,
                        const MediumInfo* before) {
    burn_toc_entry entry{};
    burn_track_get_entry(track, &entry);
    TrackInfo info;
    info.number = number;
    info.startBlock = static_cast<uint64_t>(std::max(entry.start_lba, 0));
    info.blocks = static_cast<uint64_t>(std::max(entry.track_blocks, 0));
    if (isCD && (entry.control & 4) == 0) {
        info.form = BlockForm::Audio;
        info.preEmphasis = (entry.control & 1) != 0;
        info.copyPermitted = (entry.control & 2) != 0;
        info.fourChannel = (entry.control & 8) != 0;
    }
    if (isCD) info.blocks = withoutRunOut(drive, info, before);
    if (info.form == BlockForm::Audio) return info;
    if (const auto volume = volumeAt(drive, info.startBlock)) info.volumeName = volume->name;
    return info;
}

void describeSessions(burn_drive* drive, MediumInfo& medium, bool isCD, const MediumInfo* before) {
    const Handle<burn_disc> disc(burn_drive_get_disc(drive));
    if (!disc) return;
    int count = 0;
    burn_session** sessions = burn_disc_get_sessions(disc.get(), &count);
    uint32_t number = 0;
    for (int index = 0; index < count; ++index) {
        SessionInfo session;
        session.number = static_cast<uint32_t>(index + 1);
        int tracks = 0;
        burn_track** list = burn_session_get_tracks(sessions[index], &tracks);
        for (int track = 0; track < tracks; ++track)
            session.tracks.push_back(describeTrack(drive, list[track], ++number, isCD, before));
        medium.sessions.push_back(std::move(session));
    }
}

// Of what can't be written as it is the library says nothing; its kind knows tests all the same.
bool takesTestWriting(burn_drive* drive, bool isCD) {
    burn_multi_caps* caps = nullptr;
    const bool isKnown = burn_disc_get_multi_caps(drive, BURN_WRITE_NONE, &caps, 0) > 0;
    const bool takes = isKnown ? caps->might_simulate != 0 : isCD || isSequentialDVDMinus(drive);
    if (caps != nullptr) burn_disc_free_multi_caps(&caps);
    return takes;
}

// What a full DVD-RW would hold: the largest of the sizes that it can be formatted to.
uint64_t formattedBlocks(burn_drive* drive) {
    int status = 0, formats = 0;
    off_t size = 0, largest = 0;
    unsigned more = 0;
    if (burn_disc_get_formats(drive, &status, &size, &more, &formats) <= 0) return 0;
    for (int index = 0; index < formats; ++index) {
        int type = 0;
        if (burn_disc_get_format_descr(drive, index, &type, &size, &more) > 0)
            largest = std::max(largest, size);
    }
    return static_cast<uint64_t>(largest) / blockSize;
}

// Media that take blocks in any order have no sessions of their own: what is on them, their file system says.
void describeOverwritable(burn_drive* drive, MediumInfo& medium) {
    int status = 0, formats = 0;
    off_t size = 0;
    unsigned bl_sas = 0;
    burn_disc_get_formats(drive, &status, &size, &bl_sas, &formats);
    medium.blank = true;
    if (status != BURN_FORMAT_IS_UNFORMATTED) {
        if (size > 0) medium.capacityBlocks = static_cast<uint64_t>(size) / blockSize;
        TrackInfo track;
        const auto volume = volumeAt(drive, 0);
        if (volume && volume->blocks > 0) {
            track.blocks = std::min(volume->blocks, medium.capacityBlocks);
            track.volumeName = volume->name;
        } else {
            if (!startsWithNothing(drive)) track.blocks = medium.capacityBlocks;
        }
        medium.blank = track.blocks == 0;
        if (!medium.blank) medium.sessions = {SessionInfo{1, {track}}};
    }
    medium.overwritable = medium.erasable = true;
    medium.blocksOverwritable = medium.capacityBlocks;
    medium.blocksUsed = medium.blank ? 0 : medium.sessions.front().tracks.front().blocks;
    const uint64_t next = (medium.blocksUsed + alignment - 1) / alignment * alignment;
    medium.appendable = next < medium.capacityBlocks;
    if (medium.appendable) medium.nextWritableBlock = next;
    medium.blocksFree = medium.appendable ? medium.capacityBlocks - next : 0;
    medium.state = medium.blank        ? MediumState::Blank
                   : medium.appendable ? MediumState::Appendable
                                       : MediumState::Complete;
}

void describeSequential(burn_drive* drive, const std::string& path, MediumInfo& medium,
                        burn_disc_status status, const MediumInfo* before) {
    const MediumFacts& facts = factsOf(medium.kind);
    const bool isCD = facts.mediumClass == MediumClass::CD;
    medium.blank = status == BURN_DISC_BLANK;
    medium.appendable = medium.blank || status == BURN_DISC_APPENDABLE;
    medium.erasable = burn_disc_erasable(drive) != 0;
    medium.state = medium.blank        ? MediumState::Blank
                   : medium.appendable ? MediumState::Appendable
                                       : MediumState::Complete;
    if (!medium.blank) describeSessions(drive, medium, isCD, before);
    if (!medium.sessions.empty() && !medium.sessions.back().tracks.empty()) {
        const TrackInfo& last = medium.sessions.back().tracks.back();
        medium.blocksUsed = last.startBlock + last.blocks;
    }
    if (medium.appendable) {
        const Handle<burn_write_opts> options(burn_write_opts_new(drive));
        if (isSequentialDVDMinus(drive) && !takesIncrements(drive))
            burn_write_opts_set_write_type(options.get(), BURN_WRITE_SAO, BURN_BLOCK_SAO);
        else
            burn_write_opts_set_write_type(options.get(), BURN_WRITE_TAO, BURN_BLOCK_MODE1);
        int start = 0, next = 0;
        if (burn_disc_track_lba_nwa(drive, options.get(), 0, &start, &next) > 0 && next >= 0)
            medium.nextWritableBlock = static_cast<uint64_t>(next);
        medium.blocksFree =
            static_cast<uint64_t>(std::max<off_t>(burn_disc_available_space(drive, options.get()), 0)) /
            blockSize;
        if (medium.blank)
            medium.capacityBlocks = medium.blocksFree;
        else
            medium.capacityBlocks =
                std::max(medium.blocksUsed, medium.nextWritableBlock.value_or(0) + medium.blocksFree);
    } else {
        int start = 0, end = 0;
        if (isCD && burn_disc_read_atip(drive) > 0 &&
            burn_drive_get_start_end_lba(drive, &start, &end, 0) > 0 && end > 2)
            medium.capacityBlocks = static_cast<uint64_t>(end - 2);
        else if (const uint64_t blocks = formattedBlocks(drive); !isCD && medium.erasable && blocks > 0)
            medium.capacityBlocks = blocks;
        if (!facts.writable) medium.capacityBlocks = medium.blocksUsed;
    }
    // Deliberate: re-writable media are always overwritable, and so are blank ones that are written once: it is asked
    // whether a disc can be written from block 0 on.
    medium.overwritable = medium.blank || medium.erasable;
    medium.blocksOverwritable = medium.overwritable ? medium.capacityBlocks : 0;
    // A track that a burn left open can't be trusted. Of a CD's that nobody closed, no table tells.
    const bool isLeftOpen = facts.writable && ((status == BURN_DISC_UNSUITABLE && medium.sessions.empty()) ||
                                               isLastSessionOpen(path));
    if (!medium.blank && (isLeftOpen || burn_disc_next_track_is_damaged(drive, 0) != 0)) {
        medium.state = MediumState::Incomplete;
        medium.appendable = false;
        medium.blocksFree = 0;
        medium.nextWritableBlock.reset();
    }
}

} // namespace

std::optional<MediumInfo> describeMedium(burn_drive* drive, const std::string& path,
                                         const MediumInfo* before) {
    burn_disc_status status = burn_disc_get_status(drive);
    for (int attempt = 0; status == BURN_DISC_UNREADY && attempt < 100; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        status = burn_disc_get_status(drive);
    }
    int profile = 0;
    char name[80];
    if (burn_disc_get_profile(drive, &profile, name) <= 0) return std::nullopt;
    const auto kind = kindOfProfile(profile);
    if (status == BURN_DISC_EMPTY || status == BURN_DISC_UNGRABBED || !kind) return std::nullopt;
    MediumInfo medium;
    medium.kind = *kind;
    medium.capacityBlocks = factsOf(*kind).capacityBlocks;
    medium.speeds = speedsOf(drive);
    medium.currentSpeed = currentSpeedOf(path);
    medium.path = path;
    medium.takesTests = takesTestWriting(drive, factsOf(*kind).mediumClass == MediumClass::CD);
    if (takesBlocksInAnyOrder(drive))
        describeOverwritable(drive, medium);
    else
        describeSequential(drive, path, medium, status, before);
    if (medium.blank) medium.path.clear();
    if (factsOf(*kind).mediumClass == MediumClass::CD && !medium.blank) {
        unsigned char* packs = nullptr;
        int count = 0;
        medium.hasCDText = burn_disc_get_leadin_text(drive, &packs, &count, 0) > 0 && count > 0;
        std::free(packs);
    }
    dropLibraryMessages();
    return medium;
}

void waitUntilIdle(burn_drive* drive, const std::function<void()>& poll) {
    while (burn_drive_get_status(drive, nullptr) != BURN_DRIVE_IDLE) {
        poll();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace engine
