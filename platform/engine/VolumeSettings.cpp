// What a track says of its volume, as each file system takes it.
#include "VolumeSettings.hpp"
#include "Failure.hpp"

#include <random>

namespace engine {

uint8_t writtenFilesystems(const DataTrack& track) {
    if (track.filesystems == 0)
        fail(ErrorCode::FilesystemsNotSupported,
             "The disc has no file system; choose one, ISO 9660 for instance.");
    if (track.isoLevel < 1 || track.isoLevel > 3)
        fail(ErrorCode::BadLayout,
             "There is no ISO 9660 level " + std::to_string(track.isoLevel) + "; the levels are 1 to 3.");
    return track.filesystems | filesystem::iso9660;
}

const std::string& nameOfVolume(const DataTrack& track, uint8_t filesystem) {
    const Content& root = track.root;
    if (!root.names) return root.name;
    const std::string& own = filesystem == filesystem::iso9660  ? root.names->iso
                             : filesystem == filesystem::joliet ? root.names->joliet
                             : filesystem == filesystem::udf    ? root.names->udf
                                                                : root.names->hfsPlus;
    return own.empty() ? root.name : own;
}

iso::VolumeSettings isoSettings(const DataTrack& track, uint32_t start, std::time_t now) {
    iso::VolumeSettings settings;
    settings.rules.level = track.isoLevel;
    settings.rules.rockRidge = track.rockRidge;
    // Deliberate: the standard wants A to Z, 0 to 9 and _ in all levels; spaces and punctuation are what a program is told
    // that names of level 2 have, and what readers have long taken.
    settings.rules.anyCharacter = track.isoLevel > 1;
    settings.volumeName = nameOfVolume(track, filesystem::iso9660);
    settings.jolietName = nameOfVolume(track, filesystem::joliet);
    settings.volumeSet = track.volumeSet.empty() ? track.root.name : track.volumeSet;
    settings.publisher = track.publisher;
    settings.dataPreparer = track.dataPreparer;
    settings.application = track.application;
    settings.system = track.macExtensions ? "APPLE COMPUTER, INC., TYPE: 0002" : track.system;
    settings.copyrightFile = track.copyrightFile;
    settings.abstractFile = track.abstractFile;
    settings.bibliographicFile = track.bibliographicFile;
    settings.recorded = now;
    settings.created = track.created ? track.created : track.defaultDate;
    settings.modified = track.modified ? track.modified : track.defaultDate;
    settings.expires = track.expires;
    settings.effective = track.effective;
    settings.sessionStart = start;
    return settings;
}

udf::VolumeSettings udfSettings(const DataTrack& track, uint32_t start, std::time_t now) {
    udf::VolumeSettings settings;
    settings.revision = track.udfRevision;
    settings.identity = track.udfIdentity;
    settings.volumeName = nameOfVolume(track, filesystem::udf);
    settings.volumeSetName = track.volumeSet;
    settings.recorded = now;
    settings.sessionStart = start;
    return settings;
}

hfsplus::VolumeSettings hfsPlusSettings(const DataTrack& track, std::time_t now) {
    hfsplus::VolumeSettings settings;
    settings.volumeName = nameOfVolume(track, filesystem::hfsPlus);
    settings.created = track.created.value_or(track.defaultDate.value_or(now));
    settings.checked = track.checked ? track.checked : track.defaultDate;
    std::tm local{};
    if (localtime_r(&settings.created, &local)) settings.secondsEast = static_cast<int32_t>(local.tm_gmtoff);
    std::random_device source;
    settings.identifier = uint64_t{source()} << 32 | source();
    return settings;
}

} // namespace engine
