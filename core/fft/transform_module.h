// What the core and its transform module say to each other.
//
// The module computes, the core keeps the descriptors and all that users set in them. The library that the
// module is made of, FFTW, has a licence of its own, so that the module must be a file which can be left out
// or replaced; whoever replaces it writes the five functions below over another library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace xkl::fft {

constexpr int most_dimensions = 7;

// A length with the strides of the input and the output, in elements of the side that they belong to.
struct dimension {
    int64_t length;
    int64_t in_stride;
    int64_t out_stride;
};

enum class operation : int32_t {
    complex_forward,
    complex_backward,
    real_forward,  // real input, conjugate-even output
    real_backward, // conjugate-even input, real output
    real_to_real,  // the kinds of each dimension say what
};

// How complex or conjugate-even data lies in memory.
enum class layout : int32_t {
    complex, // real and imaginary part side by side; of conjugate-even data the first half of dimension 0
    split,   // real and imaginary parts in arrays of their own
    ccs,     // conjugate-even as reals, see packed.h
    pack,
    perm,
};

struct problem {
    operation what;
    int32_t single; // 1 for float, 0 for double
    layout storage;
    int32_t in_place;
    int32_t may_destroy_input;
    int32_t keep_workspace; // for the next call, where one is needed
    int32_t threads;        // at most so many, from 1
    int32_t rank;
    int32_t batch_rank;                 // 0 or 1, for real_to_real any
    dimension sides[most_dimensions];   // the first one fastest; real lengths
    dimension batches[most_dimensions]; // how often and how far apart
    int32_t kinds[most_dimensions];     // FFTW's numbers, for real_to_real
    int64_t in_offset, out_offset;      // of the first element
    double scale;
};

// Statuses are those of the descriptors (xkl_dfti.h).
struct transform;

// What the module needs of the core. Read-only; lives as long as the process.
struct core_services {
    void *(*allocate)(size_t bytes, int alignment);
    void (*release)(void *block);
    const char *(*environment)(const char *name);
    // Calls body(context, 0) to body(context, count - 1) on the core's threads and returns when all are
    // done.
    void (*run_loop)(int64_t count, void (*body)(const void *context, int64_t index), const void *context);
};

struct module_functions {
    int32_t version;
    // Plans a transform; null after a status other than 0.
    int32_t (*make)(const problem *wanted, transform **made);
    // Several threads may run one transform at once, on arrays of their own. The arrays are those of a
    // compute call.
    int32_t (*run)(const transform *made, void *x, void *second, void *third, void *fourth);
    void (*release)(transform *made);
    // Plans in use or kept for their next use.
    int64_t (*plans)(void);
    // How often a plan was made, and not found among the kept ones.
    int64_t (*plannings)(void);
};

constexpr int32_t module_version = 1;

} // namespace xkl::fft

// The module's one symbol; null when the versions do not go together.
extern "C" const xkl::fft::module_functions *xkl_core_fft_module(const xkl::fft::core_services *core,
                                                                 int32_t version);
