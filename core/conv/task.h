// The task: what a program has settled about a convolution or correlation, apart from the arrays of one
// execution. Several threads may execute a task at once, as that changes nothing in it but the plan, which
// whoever is first puts there. Who edits or deletes a task needs it alone.
#pragma once

#include "conv/geometry.h"

#include <atomic>
#include <cstddef>

namespace xkl::core::conv {

enum : int32_t { kind_convolution = 1, kind_correlation = 2 };
enum : int32_t { domain_real = 1, domain_complex = 2 };

struct transform_plan;

struct settings {
    int32_t kind, mode, domain, precision;
    int32_t start[max_rank];
    int32_t rank;
    int32_t start_is_set;
    int32_t internal_precision;
    int32_t decimation[max_rank];
    int32_t x_shape[max_rank], y_shape[max_rank], z_shape[max_rank];

    bool is_complex() const noexcept { return domain == domain_complex; }
};

constexpr uint64_t live_task = 0x6b7361742d6e6f63;

struct task {
    uint64_t mark;                      // live_task until the task is deleted
    std::atomic<transform_plan *> plan; // null until an execution needs one
    void *x; // fixed input, a copy whose last dimension's elements are neighbours; null in other tasks
    settings set;
};
// The interface library reads the number of dimensions here.
static_assert(offsetof(task, set) + offsetof(settings, rank) == 68);

/// An array as the entries get it: it starts at its lowest address, so that a dimension with a negative
/// stride begins at its far end. Without strides its elements lie as a task's own x does.
struct array {
    const void *elements;
    const int32_t *strides;
};

/// Space for all of an array's elements in one block; -1 when it could not be addressed.
int64_t bytes_of(const settings &, const int32_t *shape) noexcept;

/// Whether an array with these strides can be addressed.
bool addressable(const settings &, const int32_t *shape, const int32_t *strides) noexcept;

/// Copies a program's x to the task's own memory.
void copy_fixed_input(const task &, const array &x) noexcept;

/// Computes z and returns a status. The arguments have been checked.
int32_t execute(task &, const array &x, const array &y, void *z, const int32_t *z_strides) noexcept;

} // namespace xkl::core::conv
