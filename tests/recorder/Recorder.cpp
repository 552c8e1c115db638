// Takes commands one at a time, from any process, and keeps what they did.
#include "Recorder.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace recorder {

namespace {

const CommandRow* rowOf(uint8_t opcode) {
    for (const auto& group :
         {driveCommands(), featureCommands(), modeCommands(), informationCommands(), tableCommands(),
          readCommands(), writeCommands(), sessionCommands(), speedCommands()})
        for (const CommandRow& row : group)
            if (row.opcode == opcode) return &row;
    return nullptr;
}

// One line for each command in the file that DISC_RECORDER_TRACE names.
void trace(const Request& request, const CommandRow* row, const std::optional<Sense>& sense) {
    static const char* name = std::getenv("DISC_RECORDER_TRACE");
    if (name == nullptr) return;
    if (FILE* file = std::fopen(name, "ae")) {
        std::fprintf(file, "%-24s", row != nullptr ? row->name : "?");
        for (const uint8_t byte : request.command)
            std::fprintf(file, " %02x", byte);
        if (sense)
            std::fprintf(file, "  refused %x/%02x/%02x", sense->key, sense->code, sense->qualifier);
        else
            std::fprintf(file, "  %zu out, %zu in", request.out.size(), request.in.size());
        std::fputc('\n', file);
        std::fclose(file);
    }
}

} // namespace

// Keeps other processes, and other threads of this one, out during a command.
class Recorder::Lock {
  public:
    explicit Lock(const std::string& folder)
        : file_(::open((folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
        while (::flock(file_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~Lock() { ::close(file_); }

  private:
    int file_;
};

Recorder::Recorder(std::string folder) : folder_(std::move(folder)) {}

Recorder::~Recorder() {
    if (data_ >= 0) ::close(data_);
}

// A rehearsal lives in this process only: the file shows what is really on the disc.
void Recorder::load() {
    State now = loadState(folder_);
    if (now.writeParameters.empty()) now.writeParameters = defaultWriteParameters();
    if (rehearsed) static_cast<Written&>(now) = state;
    state = std::move(now);
}

void Recorder::save() const {
    State now = state;
    if (rehearsed) static_cast<Written&>(now) = *rehearsed;
    saveState(folder_, now);
}

void Recorder::opened() {
    const Lock lock(folder_);
    rehearsed.reset();
    load();
}

bool Recorder::isGone() {
    const Lock lock(folder_);
    load();
    return state.gone;
}

bool Recorder::canWrite() {
    const Lock lock(folder_);
    load();
    return state.canWrite;
}

bool Recorder::isForbidden() {
    const Lock lock(folder_);
    load();
    return state.forbidden;
}

int Recorder::attachment() {
    const Lock lock(folder_);
    load();
    return state.attachment;
}

std::string Recorder::mountedAt() {
    const Lock lock(folder_);
    load();
    return state.mountedAt;
}

int Recorder::driveStatus() {
    const Lock lock(folder_);
    load();
    return state.trayOpen ? 2 : !state.medium ? 1 : state.busyPolls > 0 ? 3 : 4;
}

void Recorder::requireMedium() const {
    if (state.trayOpen) refuse(senses::noMediumTrayOpen);
    require(state.medium.has_value(), senses::noMediumTrayClosed);
}

void Recorder::goOnInBackground(bool immediate) {
    if (immediate) state.busyPolls = state.busyTotal = state.faults.busyFor;
}

void Recorder::rehearseIfAsked() {
    const bool isTest = (state.writeParameters[2] & 0x10) != 0 && (state.isCD() || state.isDVDMinus());
    if (isTest && !rehearsed) rehearsed = std::make_unique<Written>(state);
}

// What may come before a command is looked at (MMC-5, 4.1.8; SPC-3, 5.9.7): a changed medium is told once, and
// what goes on in the background is told until it is over.
void Recorder::check(uint8_t opcode) {
    constexpr uint8_t always[] = {0x03, 0x12, 0x46, 0x4A};
    if (std::find(std::begin(always), std::end(always), opcode) != std::end(always)) return;
    if (state.attention) {
        state.attention = false;
        refuse(senses::mediumChanged);
    }
    if (state.busyPolls > 0) {
        if (state.faults.goneWhileBusy) state.gone = true;
        Sense sense = senses::operationInProgress;
        sense.progress = static_cast<int>(65535 * (state.busyTotal - state.busyPolls) / state.busyTotal);
        if (opcode == 0x00) --state.busyPolls;
        refuse(sense);
    }
}

std::optional<Sense> Recorder::execute(Request& request) {
    const Lock lock(folder_);
    load();
    std::optional<Sense> sense;
    const uint8_t opcode = request.byte(0);
    const CommandRow* row = rowOf(opcode);
    try {
        check(opcode);
        require(row != nullptr, senses::invalidCommand);
        if (row->needsMedium) requireMedium();
        row->run(*this, request);
        if (request.in.size() > request.wanted) request.in.resize(request.wanted);
    } catch (const Refusal& refusal) {
        sense = refusal.sense;
        request.in.clear();
    }
    save();
    trace(request, row, sense);
    return sense;
}

int Recorder::data() {
    if (data_ < 0) data_ = ::open((folder_ + "/data").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    return data_;
}

// A CD's data begins with the 150 blocks before block 0.
void Recorder::store(int64_t block, View bytes) {
    if (rehearsed) return;
    const auto offset =
        static_cast<off64_t>((block + (state.isCD() ? 150 : 0)) * static_cast<int64_t>(sectorBytes()));
    Data changed;
    if (block == state.faults.flipOnWrite) {
        changed.assign(bytes.begin(), bytes.end());
        changed[changed.size() / 2] ^= 1;
        bytes = changed;
    }
    if (::pwrite64(data(), bytes.data(), bytes.size(), offset) != static_cast<ssize_t>(bytes.size()))
        refuse(senses::hardwareFailure);
}

void Recorder::fetch(int64_t block, std::span<uint8_t> bytes) {
    std::fill(bytes.begin(), bytes.end(), uint8_t{0});
    const auto offset =
        static_cast<off64_t>((block + (state.isCD() ? 150 : 0)) * static_cast<int64_t>(sectorBytes()));
    if (::pread64(data(), bytes.data(), bytes.size(), offset) < 0) refuse(senses::hardwareFailure);
}

void Recorder::dropData() {
    if (::ftruncate64(data(), 0) != 0) refuse(senses::hardwareFailure);
}

} // namespace recorder
