// The ways of writing to a virtual drive's medium: replaced as a whole, or written in place.
#include "VirtualTarget.hpp"
#include "Background.hpp"
#include "Failure.hpp"
#include "ImageFile.hpp"

#include <fcntl.h>
#include <unistd.h>

namespace engine {
namespace {

class VirtualTarget : public BurnTarget {
  public:
    VirtualTarget(std::shared_ptr<VirtualDrive> drive, const MediumRecord& record)
        : drive_(std::move(drive)), record_(record), medium_(record.info(drive_->path())) {}
    ~VirtualTarget() override { drive_->endBurn(); }

    const MediumInfo& medium() const noexcept override { return medium_; }

    void write(std::span<std::byte> buffer) override { file_->append(buffer); }
    void flush(const SignalRef& signal) override { file_->flush(signal); }
    Reader reader() override {
        file_->openForReading();
        return [file = file_](uint64_t offset, std::span<std::byte> buffer) {
            return file->read(offset, buffer);
        };
    }

  protected:
    int folder() const noexcept { return drive_->folder(); }

    void openFile(const char* name, const TrackInfo& track) {
        file_ = std::make_shared<ImageFile>(folder(), name);
        file_->reserve(track.blocks * blockSize, drive_->displayName());
        record_.sessions = {SessionInfo{1, {track}, true}};
    }

    std::shared_ptr<VirtualDrive> drive_;
    MediumRecord record_;
    MediumInfo medium_;
    std::shared_ptr<ImageFile> file_;
    bool committed_ = false;
};

// Re-writable kinds: the new image grows beside the old one and takes its place at the end.
class ReplacingTarget final : public VirtualTarget {
  public:
    using VirtualTarget::VirtualTarget;
    ~ReplacingTarget() override {
        if (file_ && !committed_) ::unlinkat(folder(), names::newImage, 0);
    }

    void openTrack(const TrackInfo& track) override { openFile(names::newImage, track); }

    void commit(bool intact) override {
        record_.state = intact ? MediumState::Complete : MediumState::Incomplete;
        // The old image is kept open over its end, because freeing its blocks takes long.
        auto old =
            std::make_shared<Descriptor>(::openat(folder(), names::image, O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        committed_ = true; // from here on the journal says what the new image is
        commitNewImage(folder(), record_);
        runInBackground("disc-close", [old = std::move(old)] {});
    }
};

// Write-once kinds: marked before the first byte, because nothing can be taken back.
class InPlaceTarget final : public VirtualTarget {
  public:
    using VirtualTarget::VirtualTarget;
    ~InPlaceTarget() override {
        if (file_ && !marked_) ::unlinkat(folder(), names::image, 0);
    }

    void openTrack(const TrackInfo& track) override {
        openFile(names::image, track);
        record_.image = names::image;
        record_.state = MediumState::Incomplete;
        marked_ = true; // also when saving fails half-way: then the file may be named already
        saveMedium(folder(), record_);
    }

    void commit(bool intact) override {
        if (!intact) return;
        record_.state = MediumState::Complete;
        saveMedium(folder(), record_);
        committed_ = true;
    }

  private:
    bool marked_ = false;
};

} // namespace

std::unique_ptr<BurnTarget> makeVirtualTarget(std::shared_ptr<VirtualDrive> drive,
                                              const MediumRecord& record) {
    const MediumFacts& facts = factsOf(record.kind);
    if (facts.erasable || facts.overwritable)
        return std::make_unique<ReplacingTarget>(std::move(drive), record);
    return std::make_unique<InPlaceTarget>(std::move(drive), record);
}

} // namespace engine
