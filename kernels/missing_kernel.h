// What stands in a table while nobody has written its kernel.
#pragma once

namespace xkl::kernels {

// Prints one line that names the kernel and ends the process with code 2: the result would be wrong
// otherwise.
[[noreturn]] void missing_kernel(const char *name);

} // namespace xkl::kernels
