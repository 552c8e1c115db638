// Where the bytes of one track come from: a file system that is laid out here, or a producer.
#include "TrackSource.hpp"
#include "Failure.hpp"
#include "sectors/SectorCoding.hpp"
#include "subchannel/Symbols.hpp"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

namespace engine {
namespace {

class ImageSource final : public TrackSource {
  public:
    ImageSource(std::shared_ptr<const Layout> layout, const DataTrack& track, Verification wanted)
        : layout_(std::move(layout)), track_(track), asksAgain_(wanted == Verification::ProduceAgain) {}

    uint64_t prepare(const MediumInfo&, const ImagePlace& place, const Signal& signal) override {
        const std::lock_guard lock(mutex_);
        expectGoingOn();
        image_ = DataImage::plan(track_, signal, place);
        return image_->blocks();
    }
    size_t readPreGap(std::span<std::byte>, uint64_t) override { return 0; }
    size_t read(std::span<std::byte> buffer) override {
        const std::lock_guard lock(mutex_);
        expectGoingOn();
        const size_t count = image_->read(buffer);
        if (count == 0) image_->checkSources();
        return count;
    }
    std::vector<std::byte> start() override { return image_->start(); }
    // Folders and files from disk are not made twice: what was read and written has its sums. Producers of files are asked
    // again beside them, and receive nothing.
    Verification verification(Verification wanted) const noexcept override {
        return wanted == Verification::None ? wanted : Verification::Checksum;
    }
    std::optional<Difference> compareAgain(std::span<const std::byte> bytes) override {
        const std::lock_guard lock(mutex_);
        expectGoingOn();
        return asksAgain_ ? image_->compareAgain(bytes) : std::nullopt;
    }
    std::optional<Error> cleanUp() noexcept override {
        ended_ = true;
        const std::lock_guard lock(mutex_); // a producer's call that sleeps is waited for
        return image_ ? image_->cleanUp() : std::nullopt;
    }

  private:
    void expectGoingOn() const {
        if (ended_) fail(ErrorCode::UserCanceled, "The burn was canceled.");
    }

    std::shared_ptr<const Layout> layout_;
    const DataTrack& track_;
    bool asksAgain_;
    std::shared_ptr<DataImage> image_;
    std::mutex mutex_; ///< what is abandoned may still be at work when it is to clean up
    std::atomic<bool> ended_ = false;
};

class ProducerSource final : public TrackSource {
    std::string who() const { return "The producer of track " + std::to_string(number_); }

    template <typename Call>
    auto guard(const char* what, const Call& call) const {
        if (ended_) fail(ErrorCode::UserCanceled, "The burn was canceled.");
        try {
            return call();
        } catch (const Failure&) {
            throw;
        } catch (const std::exception& problem) {
            fail(ErrorCode::DataProduction, who() + ' ' + what + '.', problem.what());
        } catch (...) {
            fail(ErrorCode::DataProduction, who() + ' ' + what + '.');
        }
    }

    // What a producer throws is a failure of its own, not a disc that differs.
    static constexpr const char* whileVerifying =
        "failed while the disc was verified; mend it, and burn again";

    template <typename Call>
    bool attempt(const Call& call) const {
        return guard(whileVerifying, call);
    }

  public:
    ProducerSource(std::shared_ptr<const Layout> layout, const ProducedTrack& track,
                   const PlannedTrack& planned)
        : layout_(std::move(layout)), producer_(track.producer), number_(planned.info.number),
          form_(track.form), blocks_(track.blocks), blockBytes_(planned.blockBytes()),
          withSubchannel_(track.subchannel != SubchannelForm::None) {}

    uint64_t prepare(const MediumInfo& medium, const ImagePlace&, const Signal&) override {
        const std::lock_guard lock(mutex_);
        if (!guard("can't prepare its data; nothing more was asked of it", [&] {
                wasToPrepare_ = true;
                return producer_->prepare(blocks_, medium);
            }))
            fail(ErrorCode::DataProduction, who() + " could not prepare its data; the disc is untouched.");
        if (blocks_ == 0)
            fail(ErrorCode::BadLayout, "Track " + std::to_string(number_) + " has no length; give it one.");
        bytes_ = blocks_ * blockBytes_;
        return blocks_;
    }

    size_t readPreGap(std::span<std::byte> buffer, uint64_t blocks) override {
        const std::lock_guard lock(mutex_);
        if (!preGapBytes_) preGapBytes_ = blocks * blockBytes_;
        return fill(buffer, preGapGiven_, *preGapBytes_, [&](uint64_t block, auto part, ProduceFlags& flags) {
            return producer_->producePreGap(block, part, flags);
        });
    }

    size_t read(std::span<std::byte> buffer) override {
        const std::lock_guard lock(mutex_);
        return fill(buffer, given_, bytes_, [&](uint64_t block, auto part, ProduceFlags& flags) {
            return producer_->produce(block, part, flags);
        });
    }

    bool beginVerification() override {
        const std::lock_guard lock(mutex_);
        given_ = 0;
        isVerifying_ = true;
        return attempt([&] { return producer_->prepareForVerification(); });
    }
    bool endVerification() override {
        const std::lock_guard lock(mutex_);
        return attempt([&] { return producer_->cleanupAfterVerification(); });
    }
    bool verifyPreGap(uint64_t block, std::span<const std::byte> bytes) override {
        const std::lock_guard lock(mutex_);
        return attempt([&] { return producer_->verifyPreGap(block, bytes); });
    }
    bool verify(uint64_t block, std::span<const std::byte> bytes) override {
        const std::lock_guard lock(mutex_);
        return attempt([&] { return producer_->verify(block, bytes); });
    }

    std::optional<Error> cleanUp() noexcept override {
        ended_ = true;
        const std::lock_guard lock(mutex_); // a call that sleeps is waited for
        if (!wasToPrepare_) return std::nullopt;
        Error error{ErrorCode::DataProduction,
                    who() + " failed when it was to clean up; the burn itself was over.",
                    {}};
        try {
            producer_->cleanupAfterBurn();
            return std::nullopt;
        } catch (const std::exception& problem) {
            error.info = problem.what();
        } catch (...) {
        }
        return error;
    }

  private:
    template <typename Call>
    size_t fill(std::span<std::byte> buffer, uint64_t& given, uint64_t& total, const Call& call) {
        size_t filled = 0;
        while (filled < buffer.size() && given < total) {
            const auto room = static_cast<size_t>(std::min<uint64_t>(buffer.size() - filled, total - given));
            ProduceFlags flags;
            flags.subchannelDataRequested = withSubchannel_;
            const size_t count =
                guard(isVerifying_ ? whileVerifying : "failed; nothing more was asked of it",
                      [&] { return call(given / blockBytes_, buffer.subspan(filled, room), flags); });
            if (count > room)
                fail(ErrorCode::DataProduction,
                     who() + " gave more data than it was asked for; nothing of the rest was written.",
                     std::to_string(count) + " bytes instead of " + std::to_string(room));
            if (count == 0 && !flags.noMoreData)
                fail(ErrorCode::DataProduction,
                     who() + " gave no data for block " + std::to_string(given / blockBytes_) + " of " +
                         std::to_string(total / blockBytes_) + ".",
                     std::to_string(given) + " bytes of " + std::to_string(total));
            filled += count;
            given += count;
            if (flags.noMoreData) filled += endHere(buffer.subspan(filled), given, total);
        }
        complete(buffer.first(filled));
        return filled;
    }

    // As the disc will have them: whole blocks.
    void complete(std::span<std::byte> blocks) const {
        if (!withSubchannel_) {
            clearPadding(form_, blocks);
            completeCodes(form_, blocks);
            return;
        }
        for (; blocks.size() >= blockBytes_; blocks = blocks.subspan(blockBytes_)) {
            const std::span<std::byte> user = blocks.first(blockBytes_ - subchannelBytes);
            clearPadding(form_, user);
            completeCodes(form_, user);
            clearDrivesChannels(blocks.subspan(user.size(), subchannelBytes));
        }
    }

    // The track ends with the block that was begun.
    size_t endHere(std::span<std::byte> rest, uint64_t& given, uint64_t& total) const {
        if (given == 0) fail(ErrorCode::DataProduction, who() + " said that there is no data at all.");
        const uint64_t begun = given % blockBytes_;
        const auto padding = static_cast<size_t>(begun == 0 ? 0 : blockBytes_ - begun);
        std::fill_n(rest.begin(), static_cast<std::ptrdiff_t>(padding), std::byte{});
        given += padding;
        total = given;
        return padding;
    }

    std::shared_ptr<const Layout> layout_;
    std::shared_ptr<TrackProducer> producer_;
    uint32_t number_;
    BlockForm form_;
    uint64_t blocks_;
    size_t blockBytes_;
    bool withSubchannel_;
    std::mutex mutex_; // held while the producer is called
    std::atomic<bool> ended_{false};
    bool wasToPrepare_ = false, isVerifying_ = false;
    uint64_t bytes_ = 0, given_ = 0, preGapGiven_ = 0;
    std::optional<uint64_t> preGapBytes_; // fewer after the producer said that there is no more
};

} // namespace

std::shared_ptr<TrackSource> makeTrackSource(std::shared_ptr<const Layout> layout, const Track& track,
                                             const PlannedTrack& planned) {
    if (const auto* data = std::get_if<DataTrack>(&track.content))
        return std::make_shared<ImageSource>(std::move(layout), *data, track.verification);
    return std::make_shared<ProducerSource>(std::move(layout), std::get<ProducedTrack>(track.content),
                                            planned);
}

} // namespace engine
