// What a track says of its volume, as libisofs takes it.
#include "VolumeSettings.hpp"
#include "Failure.hpp"
#include "NodeTimes.hpp"

#include <algorithm>
#include <limits>

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

void setVolumeTexts(IsoImage* image, const DataTrack& track) {
    const auto set = [image](void (*setter)(IsoImage*, const char*), const std::string& text) {
        if (!text.empty()) setter(image, text.c_str());
    };
    set(iso_image_set_publisher_id, track.publisher);
    set(iso_image_set_data_preparer_id, track.dataPreparer);
    set(iso_image_set_application_id, track.application);
    set(iso_image_set_system_id, track.system);
    set(iso_image_set_copyright_file_id, track.copyrightFile);
    set(iso_image_set_abstract_file_id, track.abstractFile);
    set(iso_image_set_biblio_file_id, track.bibliographicFile);
}

// libisofs takes 0 for "not set". Its own type of times: see NodeTimes.hpp.
void setVolumeTimes(IsoWriteOpts* options, const DataTrack& track) {
    using Setter = int (*)(IsoWriteOpts*, NodeTime, NodeTime, NodeTime, NodeTime, char*);
    const auto set = reinterpret_cast<Setter>(reinterpret_cast<void (*)()>(iso_write_opts_set_pvd_times));
    const auto time = [](const std::optional<std::time_t>& given) {
        return static_cast<NodeTime>(
            std::clamp<std::time_t>(given.value_or(0), 0, std::numeric_limits<NodeTime>::max()));
    };
    char noUuid[] = "";
    set(options, time(track.created), time(track.modified), time(track.expires), time(track.effective),
        noUuid);
}

} // namespace engine
