// Writing to a virtual drive's medium.
#include "VirtualTarget.hpp"
#include "Background.hpp"
#include "BurnChecks.hpp"
#include "Failure.hpp"
#include "SectorWriter.hpp"
#include "SessionPlaces.hpp"
#include "VirtualReader.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace engine {
namespace {

constexpr uint64_t startBlocks =
    32; // what comes before the first session of an overwritable medium that stays open

class VirtualTarget final : public BurnTarget {
  public:
    VirtualTarget(std::shared_ptr<VirtualDrive> drive, const MediumRecord& record)
        : drive_(std::move(drive)), record_(record), facts_(factsOf(record.kind)),
          medium_(record.info(drive_->path())) {}

    ~VirtualTarget() override {
        if (!committed_ && !marked_) removeNewFiles();
        drive_->endBurn();
    }

    const MediumInfo& medium() const noexcept override { return medium_; }

    void begin(const BurnPlan& plan) override {
        isTest_ = plan.isTest;
        const bool isFirst = medium_.blank || plan.startsAgain;
        if (isFirst) {
            record_.sessions.clear();
            record_.image.clear();
            record_.cdText.clear();
            record_.mediaCatalogNumber.clear();
        }
        replaces_ = isFirst && (facts_.erasable || facts_.overwritable);
        stem_ = replaces_ ? names::newStem : names::stem;
        kept_ = record_.sessions.size();
        renewsStart_ = facts_.overwritable && (plan.appendable || !isFirst);
        endState_ = plan.appendable ? MediumState::Appendable : MediumState::Complete;
        const bool hasTwoLayers =
            record_.kind == MediumKind::DVDRDualLayer || record_.kind == MediumKind::DVDPlusRDoubleLayer;
        setsL0DataZone_ = plan.doubleLayerL0DataZone && hasTwoLayers;
        if (!plan.mediaCatalogNumber.empty()) record_.mediaCatalogNumber = plan.mediaCatalogNumber;
    }

    void place(BurnPlan& plan, size_t session, size_t track) override {
        placeTrack(plan, session, track, record_.kind, std::span(record_.sessions).first(kept_),
                   renewsStart_ ? startBlocks : 0);
    }

    bool wantsStart() const noexcept override { return renewsStart_; }

    void openSession(const BurnPlan& plan, size_t session) override {
        plan_ = &plan;
        session_ = session;
        if (setsL0DataZone_) {
            const TrackInfo& last = plan.sessions.back().back().info;
            record_.doubleLayerL0DataZoneBlocks = l0DataZoneBlocks(
                *plan.doubleLayerL0DataZone, last.startBlock + last.blocks, record_.capacityBlocks);
        }
        const std::vector<PlannedTrack>& tracks = plan.sessions[session];
        SessionInfo added;
        added.number = static_cast<uint32_t>(record_.sessions.size() + 1);
        added.isClosed = false;
        record_.sessions.push_back(added);
        const bool hasSubchannel = std::any_of(tracks.begin(), tracks.end(), [](const PlannedTrack& each) {
            return each.info.subchannel != SubchannelForm::None;
        });
        isSectors_ = record_.isSheet() || tracks.size() > 1 || tracks.front().info.form != BlockForm::Data ||
                     tracks.front().info.preGapBlocks > usualPreGap || hasSubchannel;
        // One file for all sessions that are data, and one for each other.
        file_ = isSectors_ ? stem_ + (added.number > 1 ? std::to_string(added.number) + '.' : "") + "bin"
                           : stem_ + "iso";
        subchannelFile_ = hasSubchannel ? names::subchannelBeside(file_) : "";
        record_.image = isSectors_ ? std::string(names::sheet) : file_;
        writer_ = nullptr;
    }

    void openTrack(const PlannedTrack& track) override {
        if (writer_ == nullptr && !isTest_) openFile();
        std::vector<TrackInfo>& tracks = record_.sessions.back().tracks;
        TrackInfo info = track.info;
        info.file = file_;
        if (info.subchannel != SubchannelForm::None) info.subchannelFile = subchannelFile_;
        info.isComplete = false;
        const uint64_t kept = keptPreGap(info, tracks.empty());
        unkept_ = info.preGapBlocks - kept;
        if (!isTest_)
            info.fileOffset =
                isSectors_ ? writer_->file()->length() + kept * sectorBytes : info.startBlock * blockSize;
        tracks.push_back(info);
        if (isTest_) return;
        // Nothing can be taken back on a sequential medium.
        if (!marked_ && !replaces_ && (kept_ == 0 || !facts_.overwritable)) mark();
        writer_->begin(info, static_cast<int64_t>(info.startBlock - kept));
        if (!track.preGapIsProduced) writer_->fill(kept);
    }

    void writePreGap(std::span<std::byte> buffer) override {
        const size_t bytes = record_.sessions.back().tracks.back().blockBytes();
        const auto skipped = static_cast<size_t>(std::min<uint64_t>(unkept_, buffer.size() / bytes));
        unkept_ -= skipped;
        if (skipped * bytes < buffer.size()) write(buffer.subspan(skipped * bytes));
    }

    void write(std::span<std::byte> buffer) override {
        if (!isTest_) writer_->write(buffer);
    }

    void closeTrack(uint64_t blocks, uint64_t sum) override {
        TrackInfo& track = record_.sessions.back().tracks.back();
        track.blocks = blocks;
        track.sum = sum;
        track.isComplete = true;
    }

    void closeSession() override { record_.sessions.back().isClosed = true; }

    void writeStart(std::vector<std::byte> bytes) override { start_ = std::move(bytes); }

    void flush(const SignalRef& signal) override {
        if (isTest_) return;
        if (replaces_ && !start_.empty()) putStart();
        for (SectorWriter& writer : writers_)
            writer.flush(signal);
    }

    std::shared_ptr<MediumReader> reader() override {
        return std::make_shared<VirtualReader>(folder(), record_.cdText);
    }

    std::vector<std::vector<TrackInfo>> written() const override {
        std::vector<std::vector<TrackInfo>> tracks;
        for (size_t session = kept_; session < record_.sessions.size(); ++session)
            tracks.push_back(record_.sessions[session].tracks);
        return tracks;
    }

    uint64_t keptPreGap(const TrackInfo& track, bool isFirst) const override {
        if (!hasSectors(track.file)) return 0;
        return track.preGapBlocks - (isFirst ? std::min(unkeptPreGap, track.preGapBlocks) : 0);
    }

    void commit(bool intact) override {
        if (isTest_) return;
        record_.state = intact ? endState_ : MediumState::Incomplete;
        if (replaces_) return commitReplaced();
        if (!start_.empty() && intact) {
            // The old start goes: from here on the medium is the new one, or openly incomplete.
            const MediumState after = std::exchange(record_.state, MediumState::Incomplete);
            saveMedium(folder(), record_);
            marked_ = true;
            putStart();
            record_.state = after;
        }
        const auto saved = guarded([&] { saveMedium(folder(), record_); });
        // Deliberate: what the medium says of itself is what the burn says, also when the disk then fails.
        if (!saved && !isSaved(folder(), record_)) throw Failure(saved.error());
        committed_ = true;
    }

  private:
    int folder() const noexcept { return drive_->folder(); }

    void openFile() {
        const std::vector<PlannedTrack>& tracks = plan_->sessions[session_];
        uint64_t bytes = 0;
        for (const PlannedTrack& each : tracks)
            bytes += (each.info.blocks + (isSectors_ ? each.info.preGapBlocks : 0)) *
                     (isSectors_ ? sectorBytes : blockSize);
        // An image that this burn began goes on behind a gap: there is one file to be synced.
        if (!isSectors_ && !writers_.empty()) writers_.pop_back();
        const uint64_t from = isSectors_ ? 0 : tracks.front().info.startBlock * blockSize;
        auto file = std::make_shared<ImageFile>(folder(), file_, from, !isSectors_);
        writers_.emplace_back(file, isSectors_);
        writer_ = &writers_.back();
        file->reserve(bytes, drive_->displayName());
        if (!subchannelFile_.empty()) openSubchannelFile(bytes / sectorBytes);
        if (session_ > 0 || plan_->cdText.empty()) return;
        record_.cdText = stem_ + "cdt";
        replaceSmallFile(folder(), record_.cdText,
                         {reinterpret_cast<const char*>(plan_->cdText.data()), plan_->cdText.size()});
    }

    void openSubchannelFile(uint64_t sectors) {
        auto file = std::make_shared<ImageFile>(folder(), subchannelFile_, 0, false);
        writer_->addSubchannel(std::make_unique<SubchannelWriter>(file, record_.mediaCatalogNumber));
        file->reserve(sectors * subchannelBytes, drive_->displayName());
    }

    void mark() {
        record_.state = MediumState::Incomplete;
        marked_ = true; // also when saving fails half-way: then the files may be named already
        saveMedium(folder(), record_);
    }

    // The first blocks of the image; durable when it returns.
    void putStart() {
        const Descriptor file(::openat(folder(), (stem_ + "iso").c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
        size_t done = 0;
        while (file && done < start_.size()) {
            const ssize_t count =
                ::pwrite(file.get(), start_.data() + done, start_.size() - done, static_cast<off_t>(done));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            done += static_cast<size_t>(count);
        }
        if (done < start_.size() || ::fdatasync(file.get()) != 0)
            fail(ErrorCode::MediaWriteFailure, "The start of the disc can't be made new.", systemText(errno));
    }

    void commitReplaced() {
        // The old files are kept open over their end, because freeing their blocks takes long.
        auto old = std::make_shared<std::vector<Descriptor>>();
        for (const std::string& name : mediumFiles(folder()))
            old->emplace_back(::openat(folder(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        requireNewFiles(folder(), record_);
        committed_ = true; // from here on the journal says what the new files are
        commitNewFiles(folder(), record_);
        dropInBackground(std::move(old));
    }

    void removeNewFiles() {
        if (writers_.empty()) return;
        if (!replaces_ && kept_ > 0) return; // behind what counts; the next to write cuts it off
        for (const std::string& name : mediumFiles(folder()))
            if (!replaces_ || name.starts_with(names::newStem)) ::unlinkat(folder(), name.c_str(), 0);
    }

    std::shared_ptr<VirtualDrive> drive_;
    MediumRecord record_;
    const MediumFacts& facts_;
    MediumInfo medium_;
    bool isTest_ = false;
    bool replaces_ = false; ///< new files take the place of the old ones at the end
    bool setsL0DataZone_ = false;
    bool renewsStart_ = false; ///< readers find the newest file system through the first blocks
    std::string stem_;
    size_t kept_ = 0; ///< sessions that were there
    MediumState endState_ = MediumState::Complete;

    std::string file_;           ///< of the present session
    std::string subchannelFile_; ///< likewise; empty when no track of it brings such data
    bool isSectors_ = false;
    const BurnPlan* plan_ = nullptr;
    size_t session_ = 0;
    std::vector<SectorWriter> writers_;
    SectorWriter* writer_ = nullptr;
    uint64_t unkept_ = 0; ///< blocks of a produced pre-gap that no file keeps
    std::vector<std::byte> start_;
    bool marked_ = false; ///< the description says that the medium is incomplete
    bool committed_ = false;
};

} // namespace

std::unique_ptr<BurnTarget> makeVirtualTarget(std::shared_ptr<VirtualDrive> drive,
                                              const MediumRecord& record) {
    return std::make_unique<VirtualTarget>(std::move(drive), record);
}

} // namespace engine
