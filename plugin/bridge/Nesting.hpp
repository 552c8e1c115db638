// Nesting.hpp: how far a conversion of nested arrays and dictionaries has come, so that it always ends, and soon.
//
// A host dictionary may contain itself. Converting it for ever would end the process, so a container that is
// met inside of itself, or deeper than `deepest` others, counts as a value that can't be converted: nil.
//
// Containers that contain each other have as many paths through them as there are orders of them, and all of
// those end. So a conversion also takes only `mostRepeats` containers that it had taken before; the next is nil.
#pragma once

#include <unordered_set>

class Nesting {
  public:
    // Lives on the stack for as long as the elements of the container are converted.
    explicit Nesting(const void* container)
        : container_(container), outer_(innermost), depth_(outer_ ? outer_->depth_ + 1 : 1) {
        innermost = this;
        endsHere_ = depth_ > deepest || insideOfItself() || repeatedTooOften();
    }
    ~Nesting() {
        innermost = outer_;
        if (outer_) return;
        taken = {};
        repeats = 0;
    }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

    bool endsHere() const { return endsHere_; }

    // Far more than anybody nests, and few enough for the stack of a thread and for the platform, which
    // releases what is nested by calls within calls too.
    static constexpr int deepest = 1000;
    // Only what is met again counts, so large collections of different containers are never cut.
    static constexpr int mostRepeats = 5000;

  private:
    bool insideOfItself() const {
        for (const Nesting* other = outer_; other; other = other->outer_)
            if (other->container_ == container_) return true;
        return false;
    }
    bool repeatedTooOften() const { return !taken.insert(container_).second && ++repeats > mostRepeats; }

    static inline thread_local constinit const Nesting* innermost = nullptr;
    // Of the outermost conversion that this thread is in.
    static inline thread_local std::unordered_set<const void*> taken;
    static inline thread_local constinit int repeats = 0;

    const void* container_;
    const Nesting* outer_;
    int depth_;
    bool endsHere_ = false;
};
