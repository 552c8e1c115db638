// Nesting.hpp: how deep a conversion of nested arrays and dictionaries stands, so that it always ends.
//
// A host dictionary may contain itself. Converting it for ever would end the process, so a container that is
// met inside of itself, or deeper than `deepest` others, counts as a value that can't be converted: nil.
#pragma once

class Nesting {
  public:
    // Lives on the stack for as long as the elements of the container are converted.
    explicit Nesting(const void* container)
        : container_(container), outer_(innermost), depth_(outer_ ? outer_->depth_ + 1 : 1) {
        innermost = this;
    }
    ~Nesting() { innermost = outer_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

    bool endsHere() const {
        if (depth_ > deepest) return true;
        for (const Nesting* other = outer_; other; other = other->outer_)
            if (other->container_ == container_) return true;
        return false;
    }

    // Far more than anybody nests, and few enough for the stack of a thread and for the platform, which
    // releases what is nested by calls within calls too.
    static constexpr int deepest = 1000;

  private:
    static inline thread_local constinit const Nesting* innermost = nullptr;

    const void* container_;
    const Nesting* outer_;
    int depth_;
};
