// Random streams' and tasks' side of the recording core and its kernel library.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

/// A narrowed array that reached the core; none where that got null.
using narrowed_array = std::optional<std::vector<int32_t>>;

struct vsl_recording {
    std::vector<int32_t> statuses;      // what the next kernels and entries return; 0 when empty
    std::vector<narrowed_array> arrays; // those of the last entry, in its order
};

extern vsl_recording vsl_recorded;

/// For generated kernels.
int32_t next_status();

/// As much of a core's task as frames look at.
struct recorded_task {
    char unknown[68] = {};
    int32_t dimensions = 0;
};
