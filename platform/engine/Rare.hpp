// A value that few have: as long as it isn't asked to be written, it takes the room of a pointer.
#pragma once

#include <memory>
#include <utility>

namespace engine {

/// Reads as a default T until it is written: through `->` of one that isn't const, or by assigning.
template <typename T>
class Rare {
  public:
    Rare() noexcept = default;
    Rare(const Rare& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
    Rare(Rare&&) noexcept = default;
    Rare& operator=(Rare other) noexcept {
        value_ = std::move(other.value_);
        return *this;
    }

    bool isSet() const noexcept { return value_ != nullptr; }
    const T& operator*() const {
        static const T unset{};
        return value_ ? *value_ : unset;
    }
    const T* operator->() const { return &**this; }
    T* operator->() {
        if (!value_) value_ = std::make_unique<T>();
        return value_.get();
    }

  private:
    std::unique_ptr<T> value_;
};

} // namespace engine
