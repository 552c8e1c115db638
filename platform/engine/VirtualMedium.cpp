// The description of the medium in a virtual drive, and its journal.
#include "VirtualMedium.hpp"
#include "CueSheet.hpp"
#include "Failure.hpp"
#include "Files.hpp"
#include "SessionPlaces.hpp"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace engine {
namespace {

const std::string stem = names::stem, newStem = names::newStem;

// medium.iso, medium.new.iso, medium.2.bin...; a person's medium.iso.old is left alone.
bool isMediumFile(std::string_view name) {
    if (!name.starts_with(names::stem)) return false;
    name.remove_prefix(stem.size());
    if (name.starts_with("new.")) name.remove_prefix(4);
    const size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
    if (digits > 0 && digits < name.size() && name[digits] == '.') name.remove_prefix(digits + 1);
    return name == "iso" || name == "bin" || name == "cue" || name == "cdt" || name == "sub" ||
           name == "cue.new" || name == "cdt.new";
}

bool isNew(const std::string& name) { return name.starts_with(newStem); }

std::string finalName(const std::string& name) {
    return isNew(name) ? stem + name.substr(newStem.size()) : name;
}

// Every file that the record names; the same one may come twice.
template <typename Visit>
void forEachFile(MediumRecord& record, const Visit& visit) {
    visit(record.image);
    visit(record.cdText);
    for (SessionInfo& session : record.sessions)
        for (TrackInfo& track : session.tracks) {
            visit(track.file);
            visit(track.subchannelFile);
        }
}

bool namesNewFiles(MediumRecord& record) {
    bool found = false;
    forEachFile(record, [&](const std::string& name) { found = found || isNew(name); });
    return found;
}

void removeOthers(int folder, MediumRecord& record) {
    std::set<std::string> kept;
    forEachFile(record, [&](const std::string& name) { kept.insert(name); });
    for (const std::string& name : mediumFiles(folder))
        if (!kept.contains(name)) ::unlinkat(folder, name.c_str(), 0);
}

// Steps 3 to 5.
void finishCommit(int folder, MediumRecord& record) {
    forEachFile(record, [&](std::string& name) {
        const std::string after = finalName(name);
        if (after != name && ::renameat(folder, name.c_str(), folder, after.c_str()) != 0 && errno != ENOENT)
            fail(ErrorCode::MediaWriteFailure, "The medium's image can't be put in its place.",
                 systemText(errno));
        name = after;
    });
    saveMedium(folder, record);
    removeOthers(folder, record);
}

// What a cut-off burn appended to the image behind what counts.
void cutImage(int folder, const MediumRecord& record) {
    if (record.image.empty() || record.isSheet()) return;
    const auto end = static_cast<off_t>(endOf(record.sessions) * blockSize);
    struct stat status {};
    if (::fstatat(folder, record.image.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || status.st_size <= end)
        return;
    const Descriptor file(::openat(folder, record.image.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!file || ::ftruncate(file.get(), end) != 0)
        fail(ErrorCode::MediaWriteFailure, "What a cut-off burn left on the medium can't be removed.",
             systemText(errno));
}

} // namespace

MediumRecord MediumRecord::blank(MediumKind kind, uint64_t capacityBlocks) {
    MediumRecord record;
    record.kind = kind;
    record.capacityBlocks = capacityBlocks != 0 ? capacityBlocks : factsOf(kind).capacityBlocks;
    return record;
}

MediumInfo MediumRecord::info(const std::string& folder) const {
    const MediumFacts& facts = factsOf(kind);
    MediumInfo info;
    info.kind = kind;
    info.state = state;
    info.capacityBlocks = capacityBlocks;
    info.blank = state == MediumState::Blank;
    info.appendable = facts.writable && (info.blank || state == MediumState::Appendable);
    info.overwritable = facts.writable && (info.blank || facts.erasable || facts.overwritable);
    info.erasable = facts.erasable;
    info.sessions = sessions;
    info.blocksUsed = endOf(sessions);
    const uint64_t next = nextSessionStart(kind, sessions);
    if (info.appendable && next < capacityBlocks) {
        info.nextWritableBlock = next;
        info.blocksFree = capacityBlocks - next;
    }
    info.mediaCatalogNumber = mediaCatalogNumber;
    info.hasCDText = !cdText.empty();
    info.doubleLayerL0DataZoneBlocks = doubleLayerL0DataZoneBlocks;
    info.blocksOverwritable = info.overwritable ? capacityBlocks : 0;
    info.speeds.assign(facts.speeds.begin(), facts.speeds.end());
    if (!image.empty()) info.path = folder + '/' + image;
    return info;
}

std::string names::subchannelBeside(const std::string& sectors) {
    return sectors.substr(0, sectors.rfind('.')) + ".sub";
}

bool MediumRecord::isSheet() const noexcept { return image == names::sheet; }

std::vector<std::string> mediumFiles(int folder) {
    std::vector<std::string> files;
    DIR* const listing = ::fdopendir(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (listing == nullptr)
        fail(ErrorCode::DeviceAccess, "The drive's folder can't be read.", systemText(errno));
    while (const dirent* const entry = ::readdir(listing)) {
        const std::string name = entry->d_name;
        struct stat status {};
        if (isMediumFile(name) && ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode))
            files.push_back(name);
    }
    ::closedir(listing);
    return files;
}

void requireNewFiles(int folder, MediumRecord record) {
    forEachFile(record, [&](const std::string& name) {
        if (isNew(name) && ::faccessat(folder, name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)
            fail(ErrorCode::MediaWriteFailure, "What was written has gone from the drive; burn it again.",
                 systemText(errno));
    });
}

void commitNewFiles(int folder, MediumRecord record) {
    const auto saved = guarded([&] { saveMedium(folder, record); });
    if (!saved && !isSaved(folder, record)) throw Failure(saved.error());
    // Deliberate: from here on the medium is the new one, so a burn that can't tidy up is not one that failed. The old
    // files stay until it can.
    if (saved) (void)guarded([&] { finishCommit(folder, record); });
}

void recoverMedium(int folder) {
    ::unlinkat(folder, (std::string(names::medium) + ".new").c_str(), 0);
    auto record = loadMedium(folder);
    if (record && namesNewFiles(*record)) return finishCommit(folder, *record);
    if (!record) return; // whatever lies there, nobody has said yet that it is the medium
    removeOthers(folder, *record);
    if (record->state == MediumState::Appendable) cutImage(folder, *record);
    updateCueSheet(folder, *record);
}

} // namespace engine
