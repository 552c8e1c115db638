// A second thread for work that can be halved.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace engine {

/// Does one thing at a time beside whoever owns it. The thread begins with the first work and ends soon after its owner.
class Assistant {
  public:
    Assistant() = default;
    Assistant(const Assistant&) = delete;
    Assistant& operator=(const Assistant&) = delete;
    ~Assistant();

    /// Runs `own` here and `other` on the second thread, unless `own` has ended before that thread comes to it, as on a busy
    /// computer: so they take from one heap what there is to do. Returns when both have ended; neither may throw.
    void share(const std::function<void()>& own, const std::function<void()>& other);

  private:
    struct Shared;
    static void run(Shared& shared);
    bool hire();

    std::shared_ptr<Shared> shared_; ///< with the thread, which may outlive this
};

/// Does both, on two threads where there are items enough and a second thread comes in time. What `first` throws goes before
/// what `second` throws.
void doBoth(size_t items, const std::function<void()>& first, const std::function<void()>& second);

} // namespace engine
