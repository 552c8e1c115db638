// The part of a burn that moves the tracks' bytes: onto the medium, and back to be compared.
#include "BurnRun.hpp"
#include "Failure.hpp"
#include "Pipeline.hpp"
#include "sectors/SectorCoding.hpp"

#include <algorithm>
#include <numeric>

namespace engine {
namespace {

constexpr size_t pacedBytes =
    64u << 10; // written at once when the speed is held down, so that the status moves

// The most whole blocks in that many bytes; whole pages, too, when that is possible.
size_t wholeBlocks(size_t blockBytes, size_t bytes) {
    const size_t both = std::lcm(blockBytes, size_t{4096});
    return both <= bytes ? bytes / both * both : bytes / blockBytes * blockBytes;
}

} // namespace

void BurnRun::writeSessions(BurnTarget& target) {
    status_.totalSessions = static_cast<uint32_t>(plan_.sessions.size());
    auto item = items_.begin();
    for (size_t session = 0; session < plan_.sessions.size(); ++session) {
        status_.currentSession = static_cast<uint32_t>(session + 1);
        status_.totalTracks = static_cast<uint32_t>(plan_.sessions[session].size());
        enter(BurnState::SessionOpen);
        signal_->check();
        target.openSession(plan_, session);
        for (size_t track = 0; track < plan_.sessions[session].size(); ++track) {
            status_.currentTrack = static_cast<uint32_t>(track + 1);
            enter(BurnState::TrackOpen);
            signal_->check();
            target.openTrack(planned(*item));
            writeTrack(target, *item++);
        }
        status_.currentTrack = 0;
        enter(BurnState::SessionClose);
        signal_->check();
        target.closeSession();
    }
    status_.currentSession = 0;
}

void BurnRun::writeTrack(BurnTarget& target, Item& item) {
    const PlannedTrack& track = planned(item);
    const size_t blockBytes = track.blockBytes();
    const uint64_t total = track.info.blocks * blockBytes;
    const uint64_t preGap = track.preGapIsProduced ? track.info.preGapBlocks * blockBytes : 0;
    enter(BurnState::TrackWrite, preGap + total);
    signal_->check();
    if (track.preGapIsProduced) writePreGap(target, item);
    const bool isSummed = options_.verify && !plan_.isTest && item.verification == Verification::Checksum;
    const auto sum = std::make_shared<TrackSum>();
    Pipeline pipeline(
        signal_, "disc-read", wholeBlocks(blockBytes, pieceBytes),
        [source = item.source](std::span<std::byte> buffer) { return source->read(buffer); }, sum);
    const size_t step = isPaced() ? wholeBlocks(blockBytes, pacedBytes) : pieceBytes;
    uint64_t written = 0;
    while (auto piece = pipeline.take()) {
        if (isSummed) item.sums.push_back(piece->sum);
        for (size_t offset = 0; offset < piece->filled;) {
            const auto part = piece->content().subspan(offset).first(std::min(piece->filled - offset, step));
            target.write(part);
            offset += part.size();
            written += part.size();
            wrote(preGap + written);
        }
        pipeline.giveBack(std::move(piece));
    }
    item.bytes = written;
    if (auto start = item.source->start(); !start.empty()) target.writeStart(std::move(start));
    // A track that ends early makes room only when nothing follows it: the rest has its addresses already.
    if (written < total && !plan_.isLast(item.session, item.track)) {
        fillUp(target, track, preGap, written / blockBytes, *sum);
        written = total;
    }
    status_.bytesTotal = preGap + written;
    enter(BurnState::TrackClose);
    signal_->check();
    target.closeTrack(written / blockBytes, sum->value());
}

void BurnRun::writePreGap(BurnTarget& target, const Item& item) {
    const PlannedTrack& track = planned(item);
    Pipeline pipeline(signal_, "disc-pregap", wholeBlocks(track.blockBytes(), pieceBytes),
                      [source = item.source, blocks = track.info.preGapBlocks](std::span<std::byte> buffer) {
                          return source->readPreGap(buffer, blocks);
                      });
    uint64_t written = 0;
    while (auto piece = pipeline.take()) {
        target.writePreGap(piece->content());
        written += piece->filled;
        pipeline.giveBack(std::move(piece));
        wrote(written);
    }
    if (written < track.info.preGapBlocks * track.blockBytes())
        fail(ErrorCode::DataProduction, "The producer of track " + std::to_string(track.info.number) +
                                            " ended before the track's pre-gap was full.");
}

// The blocks of a track from that one on are empty ones.
void BurnRun::fillUp(BurnTarget& target, const PlannedTrack& track, uint64_t preGap, uint64_t from,
                     TrackSum& sum) {
    const size_t blockBytes = track.blockBytes();
    const size_t most = wholeBlocks(blockBytes, isPaced() ? pacedBytes : pieceBytes) / blockBytes;
    const std::unique_ptr<std::byte, Piece::Free> memory(
        static_cast<std::byte*>(std::aligned_alloc(4096, pieceBytes)));
    if (!memory) throw std::bad_alloc();
    while (from < track.info.blocks) {
        signal_->check();
        const auto count = static_cast<size_t>(std::min<uint64_t>(track.info.blocks - from, most));
        const std::span blocks(memory.get(), count * blockBytes);
        std::fill(blocks.begin(), blocks.end(), std::byte{}); // a target may change what it is given
        for (size_t each = 0; each < count; ++each)
            makeEmptyBlock(track.info.form, static_cast<int64_t>(track.info.startBlock + from + each),
                           blocks.subspan(each * blockBytes, bytesPerBlock(track.info.form)));
        sum.add(blocks);
        target.write(blocks);
        from += count;
        wrote(preGap + from * blockBytes);
    }
}

void BurnRun::verify(BurnTarget& target) {
    uint64_t total = 0;
    for (const Item& item : items_)
        if (item.verification != Verification::None) total += item.bytes;
    if (!options_.verify || plan_.isTest || total == 0) return;
    enter(BurnState::Verifying, total);
    signal_->check();
    const std::shared_ptr<MediumReader> reader = target.reader();
    const auto written = target.written();
    uint64_t before = 0;
    for (const Item& item : items_) {
        if (item.verification == Verification::None) continue;
        const TrackInfo& track = written[item.session][item.track];
        const uint64_t preGap =
            planned(item).preGapIsProduced ? target.keptPreGap(track, item.track == 0) : 0;
        const auto verifier = std::make_shared<TrackVerifier>(
            TrackVerifier::Written{track, item.bytes, preGap, item.sums,
                                   wholeBlocks(track.blockBytes(), pieceBytes)},
            signal_, reader, item.source, item.verification);
        verifyTrack(verifier, before, target);
        before += item.bytes;
    }
}

void BurnRun::verifyTrack(const std::shared_ptr<TrackVerifier>& verifier, uint64_t before,
                          BurnTarget& target) {
    try {
        Pipeline pipeline(signal_, "disc-verify", verifier->pieceBytes(),
                          [verifier](std::span<std::byte> buffer) { return verifier->next(buffer); });
        uint64_t checked = 0;
        while (auto piece = pipeline.take()) {
            checked += piece->filled;
            pipeline.giveBack(std::move(piece));
            progress(before + checked);
        }
    } catch (const Mismatch& mismatch) {
        target.commit(false);
        fail(ErrorCode::VerificationFailed,
             "The disc in " + inQuotes(drive_->displayName()) + " is not what was written, from block " +
                 std::to_string(mismatch.block) + " on; don't trust it, and burn again.",
             mismatch.how);
    }
}

} // namespace engine
