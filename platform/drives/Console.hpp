// What the command says and asks: questions, progress, and the wish of a person to stop.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace drives {

/// Ctrl-C and the like become a flag that long work asks for, so that it ends tidily.
void watchInterruption();
bool isInterrupted() noexcept;
/// Throws Interrupted.
void checkInterruption();

/// Thrown once a person has asked to stop; whoever made something half-done takes it back on the way out, or says what is left.
struct Interrupted {
    const char* left = "nothing was left half-done.";
};

/// Asks a question that is answered with y or n; anything but yes is no. Only on a terminal: see mayAsk().
bool confirm(const std::string& question);
bool mayAsk();

/// Goes on when `force` is set or the person agrees. Otherwise throws Failure: with no terminal it names
/// --force, since nobody can be asked. `what` is a sentence such as `The disc in "burner" holds 12.3 MB.`,
/// `deed` what would be done: "Delete it".
void requireConsent(bool force, const std::string& what, const std::string& deed);

/// How far long work is, on standard error: a bar on a terminal, else a line for the start and each quarter.
class Progress {
  public:
    /// Quiet work says nothing without a terminal (its output is for programs).
    Progress(std::string label, uint64_t totalBytes, bool quiet);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void add(uint64_t bytes) { show(done_ + bytes); }
    void show(uint64_t bytesDone);
    /// For work whose size is known later, or anew for each of its parts.
    void show(uint64_t bytesDone, uint64_t totalBytes);
    /// For work that isn't counted in bytes: 0 to 1.
    void showPart(double part);

  private:
    void drawBar(double part);

    using Clock = std::chrono::steady_clock;
    std::string label_;
    uint64_t total_, done_ = 0;
    bool onTerminal_, quiet_;
    bool drawn_ = false;
    int quarter_ = -1;
    Clock::time_point began_ = Clock::now(), lastDrawn_;
};

} // namespace drives
