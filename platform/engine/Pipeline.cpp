// One thread fills buffers while another uses them.
#include "Pipeline.hpp"
#include "Background.hpp"

namespace engine {
namespace {

constexpr size_t pieceCount = 4;

std::unique_ptr<Piece> makePiece() {
    auto piece = std::make_unique<Piece>();
    piece->memory.reset(static_cast<std::byte*>(std::aligned_alloc(4096, pieceBytes)));
    if (!piece->memory) throw std::bad_alloc();
    return piece;
}

} // namespace

Pipeline::Pipeline(SignalRef signal, const std::string& threadName, size_t bytes, Fill fill,
                   std::shared_ptr<TrackSum> sum)
    : shared_(std::make_shared<Shared>(std::move(signal))) {
    for (size_t count = 0; count < pieceCount; ++count)
        shared_->empty.push_back(makePiece());
    runInBackground(threadName, [shared = shared_, bytes, fill = std::move(fill), sum = std::move(sum)] {
        run(shared, bytes, fill, sum.get());
    });
}

Pipeline::~Pipeline() {
    const std::lock_guard lock(shared_->signal->mutex);
    shared_->dropped = true;
    shared_->signal->changed.notify_all();
}

void Pipeline::run(const std::shared_ptr<Shared>& shared, size_t bytes, const Fill& fill, TrackSum* sum) {
    Signal& signal = *shared->signal;
    std::exception_ptr problem;
    try {
        while (true) {
            std::unique_ptr<Piece> piece;
            {
                std::unique_lock lock(signal.mutex);
                signal.changed.wait(
                    lock, [&] { return !shared->empty.empty() || shared->dropped || signal.isCanceled(); });
                if (shared->dropped || signal.isCanceled()) break;
                piece = std::move(shared->empty.front());
                shared->empty.pop_front();
            }
            piece->filled = fill({piece->memory.get(), bytes});
            if (piece->filled == 0) break;
            if (sum != nullptr) {
                sum->add(piece->content());
                piece->sum = sum->value();
            }
            const std::lock_guard lock(signal.mutex);
            shared->full.push_back(std::move(piece));
            signal.changed.notify_all();
        }
    } catch (...) {
        problem = std::current_exception();
    }
    const std::lock_guard lock(signal.mutex);
    shared->problem = problem;
    shared->ended = true;
    signal.changed.notify_all();
}

std::unique_ptr<Piece> Pipeline::take() {
    Signal& signal = *shared_->signal;
    std::unique_lock lock(signal.mutex);
    signal.changed.wait(lock,
                        [&] { return !shared_->full.empty() || shared_->ended || signal.isCanceled(); });
    signal.check();
    if (!shared_->full.empty()) {
        auto piece = std::move(shared_->full.front());
        shared_->full.pop_front();
        return piece;
    }
    if (shared_->problem) std::rethrow_exception(shared_->problem);
    return nullptr;
}

void Pipeline::stop() {
    Signal& signal = *shared_->signal;
    std::unique_lock lock(signal.mutex);
    shared_->dropped = true;
    signal.changed.notify_all();
    signal.changed.wait(lock, [&] { return shared_->ended || signal.isCanceled(); });
}

void Pipeline::giveBack(std::unique_ptr<Piece> piece) {
    const std::lock_guard lock(shared_->signal->mutex);
    shared_->empty.push_back(std::move(piece));
    shared_->signal->changed.notify_all();
}

} // namespace engine
