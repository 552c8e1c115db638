// The kinds of pieces.
#include "images/Piece.hpp"

#include "Failure.hpp"
#include "Files.hpp"
#include "sectors/SectorCoding.hpp"
#include "subchannel/Symbols.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace engine {
namespace {

class Nothing final : public ImagePiece {
  public:
    using ImagePiece::ImagePiece;
    void read(uint64_t, std::span<std::byte> out) override { std::memset(out.data(), 0, out.size()); }
};

class FileBytes : public ImagePiece {
  public:
    FileBytes(std::string path, uint64_t offset, uint64_t bytes)
        : FileBytes(std::move(path), offset, bytes, bytes) {}

    void open() override {
        file_ = Descriptor(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
        struct stat status {};
        if (!file_ || ::fstat(file_.get(), &status) != 0)
            fail(ErrorCode::FileLocationConflict,
                 "The file " + inQuotes(path_) + " can't be opened: " + systemText(errno) + '.');
        if (static_cast<uint64_t>(status.st_size) < offset_ + fileBytes_)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The file " + inQuotes(path_) + " is shorter than when its image was opened.");
        ::posix_fadvise(file_.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    void read(uint64_t at, std::span<std::byte> out) override { readFile(at, out); }
    void close() noexcept override { file_.reset(); }

  protected:
    FileBytes(std::string path, uint64_t offset, uint64_t bytes, uint64_t fileBytes)
        : ImagePiece(bytes), path_(std::move(path)), offset_(offset), fileBytes_(fileBytes) {}

    void readFile(uint64_t at, std::span<std::byte> out) {
        while (!out.empty()) {
            const ssize_t got =
                ::pread(file_.get(), out.data(), out.size(), static_cast<off_t>(offset_ + at));
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0)
                fail(ErrorCode::DataProduction,
                     "The file " + inQuotes(path_) +
                         (got == 0 ? " ends before its image does." : " can't be read."),
                     got < 0 ? systemText(errno) : "");
            at += static_cast<uint64_t>(got);
            out = out.subspan(static_cast<size_t>(got));
        }
    }
    const std::string& path() const noexcept { return path_; }

    uint64_t offset() const noexcept { return offset_; }

  private:
    const std::string path_;
    const uint64_t offset_, fileBytes_;
    Descriptor file_;
};

class SwappedBytes final : public ImagePiece {
  public:
    explicit SwappedBytes(PieceRef whole) : ImagePiece(whole->bytes()), whole_(std::move(whole)) {}
    void open() override { whole_->open(); }
    void read(uint64_t at, std::span<std::byte> out) override {
        whole_->read(at, out);
        for (size_t pair = 0; pair + 1 < out.size(); pair += 2)
            std::swap(out[pair], out[pair + 1]);
    }
    void close() noexcept override { whole_->close(); }

  private:
    const PieceRef whole_;
};

class Symbols final : public FileBytes {
  public:
    Symbols(std::string path, uint64_t offset, uint64_t sectors)
        : FileBytes(std::move(path), offset, sectors * subchannelBytes) {}

    void read(uint64_t at, std::span<std::byte> out) override {
        while (!out.empty()) {
            const size_t inside = static_cast<size_t>(at % subchannelBytes);
            const size_t some = std::min(out.size(), subchannelBytes - inside);
            std::array<std::byte, subchannelBytes> channels{}, symbols{};
            readFile(at - inside, channels);
            symbolsOfChannels(channels, symbols);
            std::memcpy(out.data(), &symbols[inside], some);
            out = out.subspan(some);
            at += some;
        }
    }
};

class WithSubchannel final : public ImagePiece {
  public:
    WithSubchannel(PieceRef blocks, uint64_t blockBytes, PieceRef symbols)
        : ImagePiece(blocks->bytes() / blockBytes * (blockBytes + subchannelBytes)),
          blocks_(std::move(blocks)), symbols_(std::move(symbols)), blockBytes_(blockBytes) {}

    void open() override {
        blocks_->open();
        symbols_->open();
    }
    void read(uint64_t at, std::span<std::byte> out) override {
        const uint64_t whole = blockBytes_ + subchannelBytes;
        while (!out.empty()) {
            const uint64_t block = at / whole, inside = at % whole;
            const bool isBlock = inside < blockBytes_;
            const auto some =
                static_cast<size_t>(std::min<uint64_t>(out.size(), (isBlock ? blockBytes_ : whole) - inside));
            if (isBlock)
                blocks_->read(block * blockBytes_ + inside, out.first(some));
            else
                symbols_->read(block * subchannelBytes + inside - blockBytes_, out.first(some));
            out = out.subspan(some);
            at += some;
        }
    }
    void close() noexcept override {
        blocks_->close();
        symbols_->close();
    }

  private:
    const PieceRef blocks_, symbols_;
    const uint64_t blockBytes_;
};

class FileParts final : public FileBytes {
  public:
    FileParts(std::string path, uint64_t offset, uint64_t count, const Units& units)
        : FileBytes(std::move(path), offset, count * units.partBytes, count * units.unitBytes),
          units_(units) {}

    void read(uint64_t at, std::span<std::byte> out) override {
        while (!out.empty()) {
            const uint64_t unit = at / units_.partBytes, inside = at % units_.partBytes;
            const uint64_t touched =
                std::min((inside + out.size() + units_.partBytes - 1) / units_.partBytes, unitsAtOnce);
            buffer_.resize(static_cast<size_t>(touched * units_.unitBytes));
            readFile(unit * units_.unitBytes, buffer_);
            for (uint64_t each = 0; each < touched && !out.empty(); ++each) {
                const uint64_t from = each == 0 ? inside : 0;
                const auto some =
                    static_cast<size_t>(std::min<uint64_t>(units_.partBytes - from, out.size()));
                const std::byte* const whole = buffer_.data() + each * units_.unitBytes;
                check(whole, unit + each);
                std::memcpy(out.data(), whole + units_.partAt + from, some);
                out = out.subspan(some);
                at += some;
            }
        }
    }

  private:
    static constexpr uint64_t unitsAtOnce = 64;

    // Codes that are wrong say that the sector was damaged when it was read or kept; burned on with new ones, the
    // damage would look right. Programs that don't make codes leave zeros.
    void check(const std::byte* bytes, uint64_t number) const {
        if (!units_.isMode1 && !units_.isMode2) return;
        const std::span<const std::byte, sectorBytes> sector(bytes, sectorBytes);
        constexpr size_t codesAt = 2064;
        const auto isZero = [](std::byte byte) { return byte == std::byte{0}; };
        const bool hasCodes = !std::all_of(sector.begin() + codesAt, sector.end(), isZero);
        bool isRight = isIntactSector(units_.isMode1 ? BlockForm::RawMode1 : BlockForm::RawMode2, 0, sector);
        if (!isRight && units_.isMode1 && !hasCodes) isRight = hasFrame(sector, 1);
        if (isRight && units_.form) isRight = hasIntactCodes(*units_.form, sector);
        if (!isRight)
            fail(ErrorCode::DataProduction, "Sector " + std::to_string(offset() / units_.unitBytes + number) +
                                                " of the file " + inQuotes(path()) +
                                                " is damaged, or is no mode " + (units_.isMode1 ? "1" : "2") +
                                                " sector.");
    }
    static bool hasFrame(std::span<const std::byte, sectorBytes> sector, int mode) {
        constexpr size_t syncBytes = 12, modeAt = 15;
        for (size_t at = 0; at < syncBytes; ++at)
            if (sector[at] != (at == 0 || at == syncBytes - 1 ? std::byte{0} : std::byte{0xFF})) return false;
        return sector[modeAt] == static_cast<std::byte>(mode);
    }

    const Units units_;
    std::vector<std::byte> buffer_;
};

class Part final : public ImagePiece {
  public:
    Part(PieceRef whole, uint64_t from, uint64_t bytes)
        : ImagePiece(bytes), whole_(std::move(whole)), from_(from) {}
    void open() override { whole_->open(); }
    void read(uint64_t at, std::span<std::byte> out) override { whole_->read(from_ + at, out); }
    void close() noexcept override { whole_->close(); }

  private:
    const PieceRef whole_;
    const uint64_t from_;
};

class Sound final : public ImagePiece {
  public:
    Sound(std::string path, uint64_t first, uint64_t samples)
        : ImagePiece(samples * bytesPerSample), path_(std::move(path)), first_(first) {}

    void open() override {
        auto reader = AudioReader::open(path_);
        if (!reader) throw Failure(reader.error());
        if ((*reader)->samples() < first_ + bytes() / bytesPerSample)
            fail(ErrorCode::FileModifiedDuringBurn,
                 "The file " + inQuotes(path_) + " is shorter than when its image was opened.");
        reader_ = std::move(*reader);
        next_ = 0;
        reader_->seek(first_);
    }
    void read(uint64_t at, std::span<std::byte> out) override {
        if (at != next_ || at == 0) reader_->seek(first_ + at / bytesPerSample);
        const size_t got = reader_->read(out);
        if (got != out.size())
            fail(ErrorCode::DataProduction, "The file " + inQuotes(path_) + " ends before its image does.");
        next_ = at + out.size();
    }
    void close() noexcept override { reader_.reset(); }

  private:
    const std::string path_;
    const uint64_t first_;
    std::unique_ptr<AudioReader> reader_;
    uint64_t next_ = 0;
};

} // namespace

PieceRef nothing(uint64_t bytes) { return std::make_shared<Nothing>(bytes); }
PieceRef bytesOfFile(std::string path, uint64_t offset, uint64_t bytes) {
    return std::make_shared<FileBytes>(std::move(path), offset, bytes);
}
PieceRef swappedBytesOfFile(std::string path, uint64_t offset, uint64_t bytes) {
    return swappedBytesOf(bytesOfFile(std::move(path), offset, bytes));
}
PieceRef swappedBytesOf(PieceRef whole) { return std::make_shared<SwappedBytes>(std::move(whole)); }
PieceRef symbolsOfFile(std::string path, uint64_t offset, uint64_t sectors) {
    return std::make_shared<Symbols>(std::move(path), offset, sectors);
}
PieceRef withSubchannel(PieceRef blocks, uint64_t blockBytes, PieceRef symbols) {
    return std::make_shared<WithSubchannel>(std::move(blocks), blockBytes, std::move(symbols));
}
PieceRef partsOfFile(std::string path, uint64_t offset, uint64_t count, const Units& units) {
    return std::make_shared<FileParts>(std::move(path), offset, count, units);
}
PieceRef partsWithSubchannelOfFile(const std::string& path, uint64_t offset, uint64_t count,
                                   const Units& units) {
    const Units symbols{units.unitBytes, units.unitBytes - subchannelBytes, subchannelBytes};
    return withSubchannel(partsOfFile(path, offset, count, units), units.partBytes,
                          partsOfFile(path, offset, count, symbols));
}
PieceRef swappedSectorsOfFile(const std::string& path, uint64_t offset, uint64_t count) {
    const uint64_t unit = sectorBytes + subchannelBytes;
    return withSubchannel(swappedBytesOf(partsOfFile(path, offset, count, {unit, 0, sectorBytes})),
                          sectorBytes,
                          partsOfFile(path, offset, count, {unit, sectorBytes, subchannelBytes}));
}
PieceRef partOf(PieceRef whole, uint64_t from, uint64_t bytes) {
    return std::make_shared<Part>(std::move(whole), from, bytes);
}
PieceRef soundOfFile(std::string path, uint64_t firstSample, uint64_t samples) {
    return std::make_shared<Sound>(std::move(path), firstSample, samples);
}

} // namespace engine
