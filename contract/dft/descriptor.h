// The descriptor of a Fourier transform, as the interface library and the core share it. The core allocates
// it, usually as the head of a larger structure of its own; the interface library reads these fields and
// calls the operations, and neither may move a field without the other: hence the offsets below.
#pragma once

#include "xkl_dfti.h"

#include <cstddef>
#include <cstdint>

extern "C" {

/// Computes one direction. What a descriptor does not need of second, third and fourth is null, and so is
/// the last argument. Real and imaginary parts of split arrays alternate: re, im in place; re_in, im_in,
/// re_out, im_out out of place.
using xkl_dft_compute = int32_t(DFTI_DESCRIPTOR *, void *x, void *second, void *third, void *fourth,
                                void *reserved);

/// The operations of a descriptor; each returns a status. Lengths and strides are in the core's order, the
/// first dimension fastest; strides are an offset and a stride a dimension. All slots that have a name must
/// be filled, but for commit: without it a descriptor is refused with status 7.
struct xkl_dft_operations {
    using plain = int32_t(DFTI_DESCRIPTOR *);
    using get_integer = int32_t(DFTI_DESCRIPTOR *, int64_t *value);
    using get_vector = int32_t(DFTI_DESCRIPTOR *, int64_t *vector);
    using set_vector = int32_t(DFTI_DESCRIPTOR *, const int64_t *vector);
    using get_text = int32_t(DFTI_DESCRIPTOR *, char *text, int64_t capacity); // capacity counts the NUL
    using set_text = int32_t(DFTI_DESCRIPTOR *, const char *text, int64_t length);
    using get_real = int32_t(DFTI_DESCRIPTOR *, int32_t parameter, double *value);
    using set_real = int32_t(DFTI_DESCRIPTOR *, int32_t parameter, double value);
    using make_copy = int32_t(DFTI_DESCRIPTOR *, DFTI_DESCRIPTOR **copy);
    using unused = void;

    plain *commit; // 0
    unused *unused_1;
    get_vector *get_input_strides;  // rank + 1 entries, as all strides
    get_vector *get_output_strides; // 3
    set_vector *set_input_strides;
    set_vector *set_output_strides;
    get_vector *get_lengths; // 6, rank entries
    get_text *get_name;
    set_text *set_name;
    get_real *get_scale; // 9, by DFTI_FORWARD_SCALE or DFTI_BACKWARD_SCALE
    set_real *set_scale;
    make_copy *copy;                 // 11, with all settings, uncommitted
    get_integer *get_input_distance; // 12
    get_integer *get_output_distance;
    get_integer *get_number_of_transforms; // 14
    unused *unused_15[3];
    get_integer *get_thread_limit; // 18
    unused *unused_19;
    get_integer *get_dimension; // 20, what DFTI_DIMENSION tells
    unused *unused_21[4];
    get_integer *get_forward_distance; // 25
    get_integer *get_backward_distance;
    get_vector *get_forward_strides; // 27
    get_vector *get_backward_strides;
};

/// What a live descriptor's tag is: D, F, T, 0. Whoever frees one must overwrite it first.
constexpr int32_t xkl_dft_tag = 5523012;

/// Bits of a descriptor's flags.
constexpr uint32_t xkl_dft_destroys_input = 0x10; // DFTI_DESTROY_INPUT is DFTI_ALLOW

struct DFTI_DESCRIPTOR {
    xkl_dft_compute *forward;  // set by commit, null while uncommitted
    xkl_dft_compute *backward; // the same
    int32_t array_count;       // data pointers that a compute call takes, 1 to 4
    int32_t tag;
    int32_t commit_status; // DFTI_COMMITTED or DFTI_UNCOMMITTED
    int32_t rank;          // 1 to 7
    int32_t (*free)(DFTI_DESCRIPTOR *);
    const xkl_dft_operations *operations;
    int32_t forward_domain;         // DFTI_COMPLEX or DFTI_REAL
    int32_t precision;              // DFTI_SINGLE or DFTI_DOUBLE
    int32_t complex_storage;        // DFTI_COMPLEX_COMPLEX, or DFTI_REAL_REAL: split arrays
    int32_t real_storage;           // DFTI_REAL_REAL
    int32_t conjugate_even_storage; // DFTI_COMPLEX_COMPLEX or DFTI_COMPLEX_REAL
    int32_t placement;              // DFTI_INPLACE or DFTI_NOT_INPLACE
    int32_t packed_format;          // DFTI_CCS_FORMAT to DFTI_CCE_FORMAT
    int32_t workspace;              // DFTI_ALLOW, DFTI_AVOID or DFTI_NONE
    int32_t ordering;               // DFTI_ORDERED or DFTI_BACKWARD_SCRAMBLED
    int32_t transpose;              // DFTI_NONE or DFTI_ALLOW
    double forward_scale;
    double backward_scale;
    int32_t user_threads;
    uint32_t flags;
};
}

static_assert(offsetof(DFTI_DESCRIPTOR, forward) == 0 && offsetof(DFTI_DESCRIPTOR, backward) == 8);
static_assert(offsetof(DFTI_DESCRIPTOR, array_count) == 16 && offsetof(DFTI_DESCRIPTOR, tag) == 20);
static_assert(offsetof(DFTI_DESCRIPTOR, commit_status) == 24 && offsetof(DFTI_DESCRIPTOR, rank) == 28);
static_assert(offsetof(DFTI_DESCRIPTOR, free) == 32 && offsetof(DFTI_DESCRIPTOR, operations) == 40);
static_assert(offsetof(DFTI_DESCRIPTOR, forward_domain) == 48 &&
              offsetof(DFTI_DESCRIPTOR, precision) == 52);
static_assert(offsetof(DFTI_DESCRIPTOR, complex_storage) == 56);
static_assert(offsetof(DFTI_DESCRIPTOR, real_storage) == 60);
static_assert(offsetof(DFTI_DESCRIPTOR, conjugate_even_storage) == 64);
static_assert(offsetof(DFTI_DESCRIPTOR, placement) == 68 && offsetof(DFTI_DESCRIPTOR, packed_format) == 72);
static_assert(offsetof(DFTI_DESCRIPTOR, workspace) == 76 && offsetof(DFTI_DESCRIPTOR, ordering) == 80);
static_assert(offsetof(DFTI_DESCRIPTOR, transpose) == 84);
static_assert(offsetof(DFTI_DESCRIPTOR, forward_scale) == 88);
static_assert(offsetof(DFTI_DESCRIPTOR, backward_scale) == 96);
static_assert(offsetof(DFTI_DESCRIPTOR, user_threads) == 104 && offsetof(DFTI_DESCRIPTOR, flags) == 108);
static_assert(sizeof(DFTI_DESCRIPTOR) == 112);

namespace xkl::dft {

constexpr std::size_t slot_of(std::size_t offset)
{
    return offset / sizeof(void *);
}

} // namespace xkl::dft

static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_lengths)) == 6);
static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_input_distance)) == 12);
static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_number_of_transforms)) == 14);
static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_thread_limit)) == 18);
static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_dimension)) == 20);
static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_forward_distance)) == 25);
static_assert(xkl::dft::slot_of(offsetof(xkl_dft_operations, get_backward_strides)) == 28);
