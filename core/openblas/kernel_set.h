// The kernel library as a whole: which of its kernel sets computes, and its one count of threads.
#pragma once

#include <string>

namespace xkl::core {

// The set that the kernel library is asked for, null to let it choose.
const char *wanted_kernel_set() noexcept;

// Chooses once more after the settings changed. Only while no kernel has run.
void select_kernel_set_again();

// The set in use, such as "Haswell".
const char *kernel_set_name();

// The kernel library with its version and the set in use.
std::string dense_kernels();

// Sets the kernel library's count for the whole process; threads that it needs for that are started.
void set_kernel_library_threads(int threads);

} // namespace xkl::core
