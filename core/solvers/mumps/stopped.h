// What the run-time functions under MUMPS throw where a program of its own would end.
#pragma once

namespace xkl::core {

struct mumps_stopped {};

} // namespace xkl::core
