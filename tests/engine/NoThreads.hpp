// A computer that starts no thread any more.
#pragma once

#include <cstdint>
#include <pthread.h>

/// As long as it lives, a thread would need more memory than there are addresses.
class NoThreads {
  public:
    NoThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t large;
        pthread_attr_init(&large);
        pthread_attr_setstacksize(&large, SIZE_MAX / 4 * 3);
        pthread_setattr_default_np(&large);
        pthread_attr_destroy(&large);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
    ~NoThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }

  private:
    pthread_attr_t before_{};
};
