// libburn's names. Its header puts them into a namespace of its own for C++.
#pragma once

namespace burn {
struct burn_disc;
struct burn_drive;
struct burn_drive_info;
struct burn_session;
struct burn_source;
struct burn_write_opts;
} // namespace burn

namespace engine {
using namespace burn;
}
