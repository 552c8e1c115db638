// The file-system image of a data track, with libisofs for the layout.
#include "DataImage.hpp"
#include "Background.hpp"
#include "Failure.hpp"
#include "ImageTree.hpp"
#include "MediumKind.hpp"
#include "Utf8.hpp"
#include "VolumeSettings.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace engine {
namespace {

// libisofs's settings, message queue and counters belong to the process: one plan at a time.
std::mutex& libraryMutex() {
    static std::mutex mutex;
    return mutex;
}

// The library is never finished: an abandoned plan may still be at work when the process exits.
void startLibrary() {
    static const bool started = [] {
        if (iso_init_with_flag(1) < 0) return false; // 1: leaves the program's locale alone
        iso_set_msgs_severities(const_cast<char*>("FAILURE"), const_cast<char*>("NEVER"),
                                const_cast<char*>(""));
        iso_set_local_charset(const_cast<char*>("UTF-8"), 0);
        return true;
    }();
    if (!started) fail(ErrorCode::Internal, "The library for file-system images could not be started.");
}

std::string lastMessage() {
    std::string text;
    int code = 0, image = 0;
    char message[ISO_MSGS_MESSAGE_LEN], severity[80];
    char least[] = "FAILURE";
    while (iso_obtain_msgs(least, &code, &image, message, severity) > 0)
        text = message;
    return text;
}

void require(int code, const char* what) {
    if (code >= 0) return;
    std::string detail = lastMessage();
    if (detail.empty()) detail = iso_error_to_msg(code);
    fail(ErrorCode::BadLayout,
         std::string("The file system of the disc could not be laid out: ") + what + ".", detail);
}

constexpr size_t startBytes = 64 << 10; // what libisofs fills for the start of an overwritable medium

struct OptionsDeleter {
    void operator()(IsoWriteOpts* options) const noexcept { iso_write_opts_free(options); }
};
using Options = std::unique_ptr<IsoWriteOpts, OptionsDeleter>;

Options makeOptions(const DataTrack& track, const ImagePlace& place, std::vector<std::byte>& start) {
    IsoWriteOpts* made = nullptr;
    require(iso_write_opts_new(&made, 0), "no memory");
    Options options(made);
    iso_write_opts_set_iso_level(made, track.isoLevel);
    iso_write_opts_set_rockridge(made, track.rockRidge ? 1 : 0);
    iso_write_opts_set_joliet(made, track.filesystems & filesystem::joliet ? 1 : 0);
    iso_write_opts_set_hfsplus(made, track.filesystems & filesystem::hfsPlus ? 1 : 0);
    setVolumeTimes(made, track);
    iso_write_opts_set_joliet_utf16(made, 1);        // keeps characters past U+FFFF
    iso_write_opts_set_joliet_longer_paths(made, 1); // else files with long paths are left out of Joliet
    iso_write_opts_set_allow_deep_paths(made, 1);    // else deep folders move to another place
    iso_write_opts_set_allow_longer_paths(made, 1);
    iso_write_opts_set_dir_rec_mtime(made, 3); // the files' own times in ISO 9660 and Joliet, too
    iso_write_opts_set_always_gmt(made, 1);
    iso_write_opts_set_relaxed_vol_atts(made, 1); // the volume's name keeps its small letters
    iso_write_opts_set_output_charset(made, "UTF-8");
    iso_write_opts_set_sort_files(made, 1); // contents in the order of the source list
    iso_write_opts_set_fifo_size(made, 64);
    iso_write_opts_set_ms_block(made, static_cast<uint32_t>(place.startBlock));
    iso_write_opts_set_appendable(made, place.previous ? 1 : 0); // only what is new is written
    if (place.wantsStart) {
        start.resize(startBytes);
        iso_write_opts_set_overwrite_buf(made, reinterpret_cast<uint8_t*>(start.data()));
    }
    return options;
}

// What a medium's earlier sessions hold becomes the tree that the new one grows on. Old contents stay where they
// are.
void importPrevious(IsoImage* image, const ImagePlace& place) {
    // The imported tree keeps the source; the last who lets it go frees it.
    auto* source = static_cast<IsoDataSource*>(std::calloc(1, sizeof(IsoDataSource)));
    if (source == nullptr) throw std::bad_alloc();
    source->refcount = 1;
    source->data = new BlockReader(place.previous);
    source->open = [](IsoDataSource*) { return 1; };
    source->close = [](IsoDataSource*) { return 1; };
    source->read_block = [](IsoDataSource* self, uint32_t address, uint8_t* block) -> int {
        const std::span<std::byte, blockSize> bytes(reinterpret_cast<std::byte*>(block), blockSize);
        try {
            if ((*static_cast<const BlockReader*>(self->data))(address, bytes)) return 1;
        } catch (...) {
            // nothing may pass the library's frames
        }
        return static_cast<int>(ISO_FILE_READ_ERROR);
    };
    source->free_data = [](IsoDataSource* self) { delete static_cast<BlockReader*>(self->data); };
    const std::unique_ptr<IsoDataSource, void (*)(IsoDataSource*)> kept(source, iso_data_source_unref);
    IsoReadOpts* made = nullptr;
    require(iso_read_opts_new(&made, 0), "no memory");
    const std::unique_ptr<IsoReadOpts, void (*)(IsoReadOpts*)> options(made, iso_read_opts_free);
    iso_read_opts_set_start_block(made, static_cast<uint32_t>(place.previousStart));
    iso_read_opts_set_input_charset(made, "UTF-8");
    if (const int code = iso_image_import(image, source, made, nullptr); code < 0) {
        const std::string detail = lastMessage();
        fail(
            ErrorCode::MediaInvalid,
            "The file system that is on the disc can't be read, so nothing can be added to it; overwrite the "
            "disc, or take another one.",
            detail.empty() ? iso_error_to_msg(code) : detail);
    }
}

} // namespace

struct DataImage::Generator {
    IsoImage* image = nullptr;
    burn_source* source = nullptr;

    Generator() = default;
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;
    ~Generator() {
        if (source != nullptr) {
            // Both, in this order, end and join libisofs's thread.
            source->cancel(source);
            source->free_data(source);
            std::free(source);
        }
        if (image != nullptr) iso_image_unref(image);
    }
};

DataImage::DataImage() = default;
DataImage::~DataImage() {
    if (!generator_) return;
    try {
        runInBackground("disc-free", [generator = std::shared_ptr<Generator>(std::move(generator_))] {});
    } catch (...) {
        generator_.reset();
    }
}

std::shared_ptr<DataImage> DataImage::plan(const DataTrack& track, const Signal& signal,
                                           const ImagePlace& place) {
    const std::lock_guard lock(libraryMutex());
    signal.check();
    startLibrary();
    lastMessage();
    const std::shared_ptr<DataImage> result(new DataImage);
    result->generator_ = std::make_unique<Generator>();
    Generator& generator = *result->generator_;
    require(iso_image_new(track.root.name.c_str(), &generator.image), "no memory");
    if (place.previous) importPrevious(generator.image, place);
    iso_image_set_volume_id(generator.image, track.root.name.c_str());
    iso_image_set_volset_id(generator.image,
                            track.volumeSet.empty() ? track.root.name.c_str() : track.volumeSet.c_str());
    setVolumeTexts(generator.image, track);
    buildImageTree(generator.image, track, writtenFilesystems(track), result->sources_,
                   static_cast<bool>(place.previous), signal);

    signal.check();
    const Options options = makeOptions(track, place, result->start_);
    require(iso_image_create_burn_source(generator.image, options.get(), &generator.source),
            "the tree was refused");
    result->blocks_ = static_cast<uint64_t>(generator.source->get_size(generator.source)) / blockSize;
    uint32_t start = 0;
    require(iso_write_opts_get_data_start(options.get(), &start, 0), "no place for the files");

    uint64_t contentBlocks = 0;
    for (const SourceFile& file : result->sources_.files)
        contentBlocks += (file.fingerprint.size + blockSize - 1) / blockSize;
    // In front of the first file lies one block for all empty files and links, which belongs to the head
    // here. All that follows must be contents that this class writes, or it would write them to a wrong
    // place.
    const uint64_t headBlocks = start - place.startBlock + 1;
    // HFS+ has the copy of its header at its end.
    const bool hasTail = (track.filesystems & filesystem::hfsPlus) != 0;
    if (hasTail && headBlocks + contentBlocks < result->blocks_)
        result->tailBlocks_ = result->blocks_ - headBlocks - contentBlocks;
    if (headBlocks + contentBlocks + result->tailBlocks_ != result->blocks_)
        fail(ErrorCode::Internal, "The file system of the disc was laid out in an unexpected way.",
             std::to_string(headBlocks) + " + " + std::to_string(contentBlocks) +
                 " != " + std::to_string(result->blocks_));
    result->headBlocks_ = headBlocks;
    std::erase_if(result->sources_.files, [](const SourceFile& file) { return file.fingerprint.size == 0; });
    return result;
}

size_t DataImage::read(std::span<std::byte> buffer) {
    size_t filled = 0;
    const uint64_t headBytes = headBlocks_ * blockSize;
    const uint64_t contentEnd = (blocks_ - tailBlocks_) * blockSize;
    if (position_ < headBytes) filled = generate(buffer, headBytes);
    if (position_ >= headBytes && tailBlocks_ == 0 && generator_) {
        // libisofs's tree of many small parts takes a while to free.
        runInBackground("disc-free", [generator = std::shared_ptr<Generator>(std::move(generator_))] {});
    }
    while (filled < buffer.size() && position_ >= headBytes && position_ < contentEnd) {
        const size_t count = reader_.read(buffer.subspan(filled));
        if (count == 0) fail(ErrorCode::Internal, "The disc's image ended too early.");
        filled += count;
        position_ += count;
    }
    if (filled < buffer.size() && tailBlocks_ > 0 && position_ >= contentEnd &&
        position_ < blocks_ * blockSize) {
        skipContents(contentEnd - headBytes);
        filled += generate(buffer.subspan(filled), blocks_ * blockSize);
    }
    return filled;
}

// What libisofs makes, up to that place of the image.
size_t DataImage::generate(std::span<std::byte> buffer, uint64_t end) {
    size_t filled = 0;
    while (position_ < end && filled < buffer.size()) {
        // Never more than is left: at its end the source drops what doesn't fill a whole request.
        const auto wanted =
            static_cast<int>(std::min<uint64_t>({end - position_, buffer.size() - filled, 64 * blockSize}));
        auto* place = reinterpret_cast<unsigned char*>(buffer.data() + filled);
        if (generator_->source->read_xt(generator_->source, place, wanted) != wanted)
            fail(ErrorCode::DataProduction, "The file system of the disc could not be made.", lastMessage());
        filled += static_cast<size_t>(wanted);
        position_ += static_cast<uint64_t>(wanted);
    }
    return filled;
}

// libisofs gives zeros for the contents; they are taken from it only where something stands behind them.
void DataImage::skipContents(uint64_t bytes) {
    if (skipped_) return;
    skipped_ = true;
    const uint64_t position = position_;
    std::vector<std::byte> zeros(64 * blockSize);
    position_ = 0;
    while (position_ < bytes)
        generate(zeros, bytes);
    position_ = position;
}

Result<void> checkVolumeName(std::string_view name) {
    const auto wrong = [&](const std::string& why) {
        return Error{ErrorCode::BadLayout, "The volume name " + inQuotes(name) + " " + why,
                     std::string(name)};
    };
    if (name.empty())
        return Error{ErrorCode::BadLayout, "The volume has no name: give its root folder one.", {}};
    if (!isUtf8(name)) return wrong("is not valid UTF-8 text; use another name.");
    size_t count = 0;
    for (std::string_view rest = name; !rest.empty(); ++count) {
        const auto character = *firstCharacter(rest);
        if (character.value < 0x20 || (character.value >= 0x7F && character.value < 0xA0))
            return wrong("has a control character, which can't stand in a volume name.");
        if (character.value == '/') return wrong("has a \"/\", which can't stand in a volume name.");
        rest.remove_prefix(character.bytes);
    }
    if (count > volumeNameLimit)
        return wrong("has " + std::to_string(count) + " characters; a volume name has at most " +
                     std::to_string(volumeNameLimit) + ".");
    return {};
}

Result<uint64_t> plannedBlocks(const DataTrack& track) {
    return guarded([&] { return DataImage::plan(track, Signal())->blocks(); });
}

Layout Layout::ofData(DataTrack track) {
    Track only;
    only.content = std::move(track);
    return ofTrack(std::move(only));
}

Layout Layout::ofTrack(Track track) {
    Layout layout;
    layout.sessions.emplace_back().tracks.push_back(std::move(track));
    return layout;
}

} // namespace engine
