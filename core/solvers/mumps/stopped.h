// What the run-time functions under MUMPS throw where a program of its own would end, and its random numbers.
#pragma once

namespace xkl::core {

struct mumps_stopped {};

} // namespace xkl::core

// Begins its random numbers anew, so that every run of a step gets the same ones. Called with the lock on MUMPS held.
extern "C" void xkl_mumps_srand();
