// The line that a computation leaves when calls are traced.
#pragma once

#include "dft/descriptor.h"

namespace xkl::dfti {

enum class direction { forward, backward };

/// Formats and prints the line of a computation that took `elapsed` seconds; output may be null.
void print_trace_line(double elapsed, direction way, DFTI_DESCRIPTOR_HANDLE handle, const void *input,
                      const void *output);

} // namespace xkl::dfti
