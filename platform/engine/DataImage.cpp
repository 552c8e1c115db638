// The file-system image of a data track, with libisofs for the layout.
#include "DataImage.hpp"
#include "Background.hpp"
#include "Failure.hpp"
#include "ImageTree.hpp"
#include "MediumKind.hpp"
#include "UdfBridge.hpp"
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

Options makeOptions(const DataTrack& track, const ImagePlace& place, uint64_t frontBlocks,
                    std::vector<std::byte>& start) {
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
    iso_write_opts_set_ms_block(made, static_cast<uint32_t>(place.startBlock + frontBlocks));
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
    const uint8_t filesystems = writtenFilesystems(track);
    const NodeSet notInUdf = buildImageTree(generator.image, track, filesystems, result->sources_,
                                            static_cast<bool>(place.previous), signal);

    signal.check();
    if (filesystems & filesystem::udf) {
        result->bridge_ = std::make_unique<UdfBridge>(generator.image, notInUdf, track, place);
        result->frontBlocks_ = result->bridge_->frontBlocks();
    }
    const Options options = makeOptions(track, place, result->frontBlocks_, result->start_);
    require(iso_image_create_burn_source(generator.image, options.get(), &generator.source),
            "the tree was refused");
    const uint64_t isoBlocks =
        static_cast<uint64_t>(generator.source->get_size(generator.source)) / blockSize;
    uint32_t start = 0;
    require(iso_write_opts_get_data_start(options.get(), &start, 0), "no place for the files");

    for (const SourceFile& file : result->sources_.files)
        result->contentBlocks_ += (file.fingerprint.size + blockSize - 1) / blockSize;
    // In front of the first file lies one block for all empty files and links, which belongs to the head
    // here. All that follows must be contents that this class writes, or it would write them to a wrong
    // place.
    result->headBlocks_ = start - place.startBlock - result->frontBlocks_ + 1;
    const uint64_t known = result->headBlocks_ + result->contentBlocks_;
    // HFS+ has the copy of its header at its end.
    if ((filesystems & filesystem::hfsPlus) && known < isoBlocks) result->tailBlocks_ = isoBlocks - known;
    if (known + result->tailBlocks_ != isoBlocks)
        fail(ErrorCode::Internal, "The file system of the disc was laid out in an unexpected way.",
             std::to_string(result->headBlocks_) + " + " + std::to_string(result->contentBlocks_) +
                 " != " + std::to_string(isoBlocks));
    result->blocks_ = result->frontBlocks_ + isoBlocks;
    if (result->bridge_) {
        std::vector<std::byte> front(
            static_cast<size_t>(std::min<uint64_t>(startBytes, result->headBlocks_ * blockSize)));
        result->generate(front);
        result->bridge_->place(result->sources_, start + 1, isoBlocks, front);
        result->isoFront_ = std::move(front);
        result->blocks_ += UdfBridge::behindBlocks;
    }
    std::erase_if(result->sources_.files, [](const SourceFile& file) { return file.fingerprint.size == 0; });
    return result;
}

size_t DataImage::read(std::span<std::byte> buffer) {
    size_t filled = 0;
    // As much of the buffer as lies before that block of the image.
    const auto upTo = [&](uint64_t block) {
        const uint64_t end = block * blockSize;
        return buffer.subspan(filled).first(static_cast<size_t>(
            std::min<uint64_t>(buffer.size() - filled, end > position_ ? end - position_ : 0)));
    };
    const auto took = [&](size_t count) {
        filled += count;
        position_ += count;
    };
    uint64_t end = frontBlocks_;
    if (const auto front = upTo(end); !front.empty()) {
        makeBlocks(position_ / blockSize, front);
        took(front.size());
    }
    if (const auto again = upTo(end + isoFront_.size() / blockSize); !again.empty()) {
        std::memcpy(again.data(), isoFront_.data() + (position_ - end * blockSize), again.size());
        took(again.size());
    }
    end += headBlocks_;
    if (const auto head = upTo(end); !head.empty()) {
        generate(head);
        took(head.size());
    }
    if (position_ >= end * blockSize && tailBlocks_ == 0 && generator_) {
        // libisofs's tree of many small parts takes a while to free.
        runInBackground("disc-free", [generator = std::shared_ptr<Generator>(std::move(generator_))] {});
    }
    end += contentBlocks_;
    for (auto contents = upTo(end); !contents.empty(); contents = upTo(end)) {
        const size_t count = reader_.read(contents);
        if (count == 0) fail(ErrorCode::Internal, "The disc's image ended too early.");
        took(count);
    }
    end += tailBlocks_;
    if (const auto tail = upTo(end); !tail.empty()) {
        skipContents();
        generate(tail);
        took(tail.size());
    }
    if (const auto behind = upTo(blocks_); !behind.empty()) {
        makeBlocks(position_ / blockSize, behind);
        took(behind.size());
    }
    return filled;
}

// What libisofs makes next. Never more than is left: at its end the source drops what doesn't fill a whole request.
void DataImage::generate(std::span<std::byte> buffer) {
    while (!buffer.empty()) {
        const auto wanted = static_cast<int>(std::min<size_t>(buffer.size(), 64 * blockSize));
        if (generator_->source->read_xt(generator_->source, reinterpret_cast<unsigned char*>(buffer.data()),
                                        wanted) != wanted)
            fail(ErrorCode::DataProduction, "The file system of the disc could not be made.", lastMessage());
        buffer = buffer.subspan(static_cast<size_t>(wanted));
    }
}

// libisofs gives zeros for the contents; they are taken from it only where something stands behind them.
void DataImage::skipContents() {
    if (skipped_) return;
    skipped_ = true;
    std::vector<std::byte> zeros(64 * blockSize);
    for (uint64_t left = contentBlocks_; left > 0;) {
        const uint64_t count = std::min<uint64_t>(left, 64);
        generate(std::span(zeros).first(static_cast<size_t>(count * blockSize)));
        left -= count;
    }
}

void DataImage::makeBlocks(uint64_t first, std::span<std::byte> buffer) const {
    for (; !buffer.empty(); buffer = buffer.subspan(blockSize))
        bridge_->block(first++, buffer.first<blockSize>());
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
