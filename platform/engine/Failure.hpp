// How the engine's inner functions fail: an exception that holds an Error. It never leaves the public
// functions, and never passes a C library's frames.
#pragma once

#include "Error.hpp"

#include <exception>

namespace engine {

class Failure : public std::exception {
  public:
    explicit Failure(Error error) : error_(std::move(error)) {}
    const Error& error() const noexcept { return error_; }
    const char* what() const noexcept override { return error_.message.c_str(); }

  private:
    Error error_;
};

[[noreturn]] void fail(ErrorCode code, std::string message, std::string info = {});

/// The system's text for an errno value ("No space left on device").
std::string systemText(int errorNumber);

/// A path or name in quotes for a sentence; bytes that aren't printable UTF-8 show as '?'.
std::string inQuotes(std::string_view text);

/// "12.3 MB"; a MB is a million bytes.
std::string megabytes(uint64_t bytes);

/// Runs `body`, turning what it throws into a Result.
template <typename Body>
auto guarded(Body&& body) -> Result<decltype(body())> {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return {};
        } else {
            return body();
        }
    } catch (const Failure& failure) {
        return failure.error();
    } catch (const std::exception& problem) {
        return makeError(ErrorCode::Internal, problem.what());
    }
}

} // namespace engine
