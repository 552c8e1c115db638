// Media as files.
#include "MediumFiles.hpp"
#include "BurnJob.hpp"
#include "Failure.hpp"
#include "FileSystemCheck.hpp"
#include "Lookup.hpp"
#include "MediumNames.hpp"
#include "images/ReadImage.hpp"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <set>
#include <strings.h>
#include <unistd.h>

namespace drives {
namespace {

namespace fs = std::filesystem;
using engine::ErrorCode;
using engine::fail;
using engine::inQuotes;
using engine::MediumKind;

constexpr char subchannels[] = ".sub";

engine::Descriptor openFolder(const std::string& path) {
    engine::Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        fail(ErrorCode::DeviceAccess, "The folder " + inQuotes(path) + " can't be opened.",
             engine::systemText(errno));
    return folder;
}

void rename(const std::string& from, const std::string& to) {
    if (::rename(from.c_str(), to.c_str()) != 0)
        fail(ErrorCode::MediaWriteFailure, inQuotes(to) + " can't be put in its place.",
             engine::systemText(errno));
}

[[noreturn]] void cameMeanwhile(const std::string& path) {
    fail(ErrorCode::BurnNotAllowed,
         inQuotes(path) + " was made by another program meanwhile, and is not overwritten.");
}

// What was not asked about is a person's, saved while we were at work.
void renameNew(const std::string& from, const std::string& to) {
    int result = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
    // Not every file system can do that in one step.
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
        std::error_code ignored;
        if (fs::exists(fs::symlink_status(to, ignored))) cameMeanwhile(to);
        result = ::rename(from.c_str(), to.c_str());
    }
    if (result == 0) return;
    if (errno == EEXIST) cameMeanwhile(to);
    fail(ErrorCode::MediaWriteFailure, inQuotes(to) + " can't be put in its place.",
         engine::systemText(errno));
}

bool looksLikeADescription(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rbe");
    const int first = file != nullptr ? std::fgetc(file) : EOF;
    if (file != nullptr) std::fclose(file);
    return first == '{';
}

// Every file that the description names; the same one may come twice.
template <typename Visit>
void forEachFile(engine::MediumRecord& record, const Visit& visit) {
    const auto present = [&](std::string& name) {
        if (!name.empty()) visit(name);
    };
    present(record.image);
    present(record.cdText);
    for (engine::SessionInfo& session : record.sessions)
        for (engine::TrackInfo& track : session.tracks) {
            present(track.file);
            present(track.subchannelFile);
        }
}

// What a file is called until the medium is the drive's: as there, but new. Files with names of a person's own get
// one of the usual ones.
std::string newNameFor(const std::string& name, size_t number) {
    const std::string stem = engine::names::stem, newStem = engine::names::newStem;
    if (name.starts_with(newStem)) return name;
    if (name.starts_with(stem) && name.find('.', stem.size()) == std::string::npos)
        return newStem + name.substr(stem.size());
    const std::string extension = fs::path(name).extension().string();
    return newStem + std::to_string(number + 100) +
           (extension == ".bin" || extension == ".cue" || extension == ".cdt" || extension == subchannels
                ? extension
                : ".iso");
}

MediumFiles stageDescribed(const fs::path& description, const Staging& staging, bool quiet) {
    Progress unseen("", 0, true);
    copyFile(description.string(), staging.path() + '/' + engine::names::medium, unseen);
    const auto record = engine::loadMedium(openFolder(staging.path()).get());
    MediumFiles found{*record, description.parent_path().empty() ? "." : description.parent_path().string()};
    Progress progress("Copying", dataBytesOf(found), quiet);
    for (const std::string& name : dataFilesOf(*record))
        copyFile(found.folder + '/' + name, staging.path() + '/' + name, progress);
    found.folder = staging.path();
    return found;
}

MediumKind kindForImage(const std::string& path, uint64_t blocks, const std::string& kind) {
    if (!kind.empty()) return kindNamed(kind);
    for (const MediumKind each : {MediumKind::CDROM, MediumKind::DVDROM, MediumKind::BDROM})
        if (blocks <= engine::factsOf(each).capacityBlocks) return each;
    fail(ErrorCode::MediaInvalid, inQuotes(path) + " is larger than a BD-ROM of one layer; say with --kind "
                                                   "what it shall be.");
}

MediumFiles stageImage(const std::string& path, const std::string& kind, const Staging& staging, bool quiet) {
    const uint64_t bytes = fileSize(path);
    const uint64_t blocks = (bytes + engine::blockSize - 1) / engine::blockSize;
    const auto volume = volumeIn(path);
    if (!volume && kind.empty())
        fail(ErrorCode::MediaInvalid,
             inQuotes(path) + " is neither a medium's description nor an image with a file system; "
                              "give --kind to insert it all the same.");
    MediumFiles medium{engine::MediumRecord::blank(kindForImage(path, blocks, kind)), staging.path()};
    engine::MediumRecord& record = medium.record;
    if (blocks > record.capacityBlocks || blocks == 0)
        fail(ErrorCode::BurnNotAllowed,
             inQuotes(path) + (blocks == 0 ? " is empty." : " is too large for a ") +
                 std::string(blocks == 0 ? "" : engine::factsOf(record.kind).name));
    Progress progress("Copying", bytes, quiet);
    const std::string copy = staging.path() + '/' + engine::names::image;
    copyFile(path, copy, progress);
    if (::truncate(copy.c_str(), static_cast<off_t>(blocks * engine::blockSize)) != 0)
        fail(ErrorCode::MediaWriteFailure, inQuotes(copy) + " can't be written.", engine::systemText(errno));
    engine::TrackInfo track;
    track.blocks = blocks;
    track.file = engine::names::image;
    track.volumeName = volume.value_or("");
    record.state = engine::MediumState::Complete;
    record.image = engine::names::image;
    record.sessions = {engine::SessionInfo{1, {track}}};
    if (!engine::factsOf(record.kind).writable) record.capacityBlocks = blocks;
    return medium;
}

bool isSheet(const fs::path& path) {
    const std::string extension = path.extension().string();
    return ::strcasecmp(extension.c_str(), ".cue") == 0 || ::strcasecmp(extension.c_str(), ".toc") == 0;
}

// A sheet's tracks are burned onto a disc in a drive of the staging folder's own, whose medium they are then.
MediumFiles stageSheet(const std::string& path, const std::string& kind, const Staging& staging, bool quiet) {
    Progress progress("Copying", 0, quiet);
    const engine::ImageLayout image = take(engine::readImageFile(path));
    const MediumKind wanted = kind.empty() ? MediumKind::CDROM : kindNamed(kind);
    engine::VirtualDriveSetup setup;
    setup.product = fs::path(path).filename().string();
    setup.medium = engine::factsOf(wanted).writable ? wanted : MediumKind::CDR;
    const std::string folder = staging.path() + "/drive";
    take(engine::makeVirtualDrive(folder, setup));
    const auto drive = engine::VirtualDrive::open(folder);
    engine::BurnOptions options;
    options.verify = false;
    image.applyTo(options);
    engine::BurnJob job(drive); // aborts when an interruption leaves this function
    take(job.start(image.layout, options));
    while (!job.waitFor(std::chrono::milliseconds(50))) {
        checkInterruption();
        const engine::BurnStatus status = job.status();
        if (status.bytesTotal > 0) progress.show(status.bytesDone, status.bytesTotal);
    }
    if (const auto error = job.wait().error) throw engine::Failure(*error);
    MediumFiles medium{*engine::loadMedium(drive->folder()), folder};
    medium.record.kind = wanted;
    if (!engine::factsOf(wanted).writable)
        medium.record.capacityBlocks = medium.record.info(folder).blocksUsed;
    return medium;
}

} // namespace

std::vector<std::string> dataFilesOf(const engine::MediumRecord& record) {
    engine::MediumRecord visited = record;
    std::set<std::string> names;
    forEachFile(visited, [&](const std::string& name) { names.insert(name); });
    return {names.begin(), names.end()};
}

uint64_t dataBytesOf(const MediumFiles& medium) {
    uint64_t bytes = 0;
    for (const std::string& name : dataFilesOf(medium.record))
        bytes += fileSize(medium.folder + '/' + name);
    return bytes;
}

MediumFiles stageMedium(const std::string& path, const std::string& kind, const Staging& staging,
                        bool quiet) {
    std::error_code ignored;
    const bool isFolder = fs::is_directory(path, ignored);
    const fs::path file = isFolder ? fs::path(path) / engine::names::medium : fs::path(path);
    fileSize(file.string()); // says what is wrong when there is none
    if (!isFolder && isSheet(file)) return stageSheet(path, kind, staging, quiet);
    if (!isFolder && !looksLikeADescription(file.string())) return stageImage(path, kind, staging, quiet);
    if (!kind.empty())
        fail(ErrorCode::BadLayout,
             inQuotes(path) + " says itself what kind it is; leave out --kind, which is for images.");
    return stageDescribed(file, staging, quiet);
}

void putInto(const engine::VirtualDrive& drive, const MediumFiles& staged) {
    // A medium that can't be read is replaced as it is: it names nothing that is to be brought to an end.
    const auto recovered = engine::guarded([&] { engine::recoverMedium(drive.folder()); });
    if (!recovered && recovered.error().code != ErrorCode::MediaInvalid)
        throw engine::Failure(recovered.error());
    engine::MediumRecord record = staged.record;
    std::map<std::string, std::string> renamed;
    std::set<std::string> taken;
    forEachFile(record, [&](std::string& name) {
        const auto known = renamed.find(name);
        const std::string before = name;
        // What lies beside a file of sectors stays beside it.
        const auto sectors = before.ends_with(subchannels)
                                 ? renamed.find(before.substr(0, before.rfind('.')) + ".bin")
                                 : renamed.end();
        if (known != renamed.end())
            name = known->second;
        else if (sectors != renamed.end())
            name = engine::names::subchannelBeside(sectors->second);
        else
            name = newNameFor(name, renamed.size());
        if (known != renamed.end()) return;
        if (!taken.insert(name).second)
            fail(ErrorCode::MediaInvalid, "The medium's description names two files that would both become " +
                                              inQuotes(name) + "; rename " + inQuotes(before) +
                                              ", there and in the folder.");
        renamed.emplace(before, name);
    });
    for (const auto& [before, after] : renamed)
        rename(staged.folder + '/' + before, drive.path() + '/' + after);
    engine::commitNewFiles(drive.folder(), record);
}

void takeOutOf(const engine::VirtualDrive& drive) {
    if (::unlinkat(drive.folder(), engine::names::medium, 0) != 0 && errno != ENOENT)
        fail(ErrorCode::DeviceAccess,
             "The medium in " + inQuotes(drive.displayName()) + " can't be taken out.",
             engine::systemText(errno));
    engine::syncFolder(drive.folder());
    for (const std::string& name : engine::mediumFiles(drive.folder()))
        ::unlinkat(drive.folder(), name.c_str(), 0);
}

void copyOut(const engine::VirtualDrive& drive, const std::string& folder,
             const std::set<std::string>& replaceable, bool quiet) {
    engine::recoverMedium(drive.folder());
    const auto record = engine::loadMedium(drive.folder());
    if (!record)
        fail(ErrorCode::MediaNotPresent, "There is no disc in " + inQuotes(drive.displayName()) + '.');
    engine::makeFolders(folder);
    const Staging staging(folder);
    const MediumFiles medium{*record, drive.path()};
    Progress progress("Copying", dataBytesOf(medium), quiet);
    for (const std::string& name : dataFilesOf(*record))
        copyFile(drive.path() + '/' + name, staging.path() + '/' + name, progress);
    engine::saveMedium(openFolder(staging.path()).get(), *record);
    std::vector<std::string> names = dataFilesOf(*record), placed;
    names.emplace_back(engine::names::medium);
    try {
        for (const std::string& name : names) {
            const std::string to = folder + '/' + name;
            (replaceable.contains(name) ? rename : renameNew)(staging.path() + '/' + name, to);
            if (!replaceable.contains(name)) placed.push_back(to);
        }
    } catch (...) { // a part of a medium is of no use to anybody
        for (const std::string& path : placed)
            ::unlink(path.c_str());
        throw;
    }
    engine::syncFolder(openFolder(folder).get());
}

void writeBlankMedium(const engine::MediumRecord& record, const std::string& file, bool mayReplace) {
    const fs::path parent = fs::absolute(file).parent_path();
    std::error_code ignored;
    if (!fs::is_directory(parent, ignored))
        fail(ErrorCode::FileLocationConflict, "There is no folder " + inQuotes(parent.string()) + '.');
    const Staging staging(parent.string());
    engine::saveMedium(openFolder(staging.path()).get(), record);
    (mayReplace ? rename : renameNew)(staging.path() + '/' + engine::names::medium, file);
}

} // namespace drives
