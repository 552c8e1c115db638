// Questions, progress and interruption.
#include "Console.hpp"
#include "Failure.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <unistd.h>

namespace drives {
namespace {

volatile std::sig_atomic_t interrupted = 0;

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

void interrupt(int) { interrupted = 1; }

size_t terminalWidth() {
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 20 ? size.ws_col : 80;
}

std::string clockText(double seconds) {
    const auto whole = static_cast<unsigned>(std::min(seconds, 359999.0));
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%u:%02u", whole / 60, whole % 60);
    return text.data();
}

} // namespace

void watchInterruption() {
    struct sigaction action {};
    action.sa_handler = interrupt;
    for (const int number : endingSignals)
        ::sigaction(number, &action, nullptr);
    // Who no longer listens to us must not leave a copy behind.
    std::signal(SIGPIPE, SIG_IGN);
}

bool isInterrupted() noexcept { return interrupted != 0; }

void checkInterruption() {
    if (isInterrupted()) throw Interrupted{};
}

bool mayAsk() { return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1; }

bool confirm(const std::string& question) {
    std::fprintf(stderr, "%s [y/N] ", question.c_str());
    std::fflush(stderr);
    // Signals come in while nothing but pselect() waits, so that none falls between looking and waiting.
    sigset_t blocked, before;
    ::sigemptyset(&blocked);
    for (const int number : endingSignals)
        ::sigaddset(&blocked, number);
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    std::string answer;
    while (!isInterrupted()) {
        fd_set waiting;
        FD_ZERO(&waiting);
        FD_SET(STDIN_FILENO, &waiting);
        if (::pselect(STDIN_FILENO + 1, &waiting, nullptr, nullptr, nullptr, &before) < 0) continue;
        char character = 0;
        if (::read(STDIN_FILENO, &character, 1) <= 0 || character == '\n') break;
        answer += character;
    }
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    checkInterruption();
    std::transform(answer.begin(), answer.end(), answer.begin(), [](char each) {
        return each >= 'A' && each <= 'Z' ? static_cast<char>(each + 32) : each;
    });
    return answer == "y" || answer == "yes";
}

void requireConsent(bool force, const std::string& what, const std::string& deed) {
    if (force) return;
    if (!mayAsk())
        engine::fail(engine::ErrorCode::BurnNotAllowed,
                     what + " Give --force, and nobody will be asked: " + deed + ".");
    if (!confirm(what + ' ' + deed + '?'))
        engine::fail(engine::ErrorCode::UserCanceled, "Nothing was changed.");
}

Progress::Progress(std::string label, uint64_t totalBytes, bool quiet)
    : label_(std::move(label)), total_(totalBytes), onTerminal_(::isatty(STDERR_FILENO) == 1), quiet_(quiet) {
}

Progress::~Progress() {
    if (drawn_) std::fprintf(stderr, "\r%*s\r", static_cast<int>(terminalWidth()) - 1, "");
}

void Progress::show(uint64_t bytesDone) {
    done_ = bytesDone;
    showPart(total_ > 0 ? std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_)) : 1);
}

void Progress::showPart(double part) {
    const auto now = Clock::now();
    // What is over in a moment needs no bar.
    if (onTerminal_) {
        if (now - began_ < std::chrono::milliseconds(300) ||
            now - lastDrawn_ < std::chrono::milliseconds(100))
            return;
        lastDrawn_ = now;
        drawBar(part);
        return;
    }
    if (quiet_ || static_cast<int>(part * 4) <= quarter_) return;
    if (quarter_ < 0) std::fprintf(stderr, "%s …\n", label_.c_str());
    quarter_ = static_cast<int>(part * 4);
    if (quarter_ > 0) std::fprintf(stderr, "  %d%%\n", quarter_ * 25);
}

void Progress::show(uint64_t bytesDone, uint64_t totalBytes) {
    total_ = totalBytes;
    show(bytesDone);
}

void Progress::drawBar(double part) {
    constexpr int width = 30;
    const int filled = static_cast<int>(part * width);
    const double seconds = std::chrono::duration<double>(Clock::now() - began_).count();
    std::string line = '[' + std::string(static_cast<size_t>(filled), '#') +
                       std::string(static_cast<size_t>(width - filled), '-') + "] " +
                       std::to_string(static_cast<int>(part * 100)) + "%  " + label_;
    if (done_ > 0)
        line += "  " + engine::megabytes(static_cast<uint64_t>(static_cast<double>(done_) / seconds)) + "/s";
    if (part > 0 && part < 1) line += "  " + clockText(seconds / part * (1 - part)) + " left";
    std::fprintf(stderr, "\r%-*s", static_cast<int>(terminalWidth()) - 1, line.c_str());
    std::fflush(stderr);
    drawn_ = true;
}

} // namespace drives
