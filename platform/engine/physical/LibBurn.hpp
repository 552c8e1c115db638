// libburn's names. Its header puts them into a namespace of its own for C++.
#pragma once

#include <memory>

namespace burn {
struct burn_disc;
struct burn_drive;
struct burn_drive_info;
struct burn_session;
struct burn_source;
struct burn_track;
struct burn_write_opts;
} // namespace burn

namespace engine {
using namespace burn;

/// Gives up what the library made for us.
struct GiveUp {
    void operator()(burn_disc* disc) const noexcept;
    void operator()(burn_session* session) const noexcept;
    void operator()(burn_source* source) const noexcept;
    void operator()(burn_track* track) const noexcept;
    void operator()(burn_write_opts* options) const noexcept;
};
template <typename Made>
using Handle = std::unique_ptr<Made, GiveUp>;

} // namespace engine
