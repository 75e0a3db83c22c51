// The loops of the generators that are compiled once per instruction set, and the table through which
// they are called. All integer arithmetic is exact, and so is the conversion to numbers but for one
// rounding of a product and one of a sum: every copy gives the same results.
#pragma once

#include <cstdint>

namespace xkl::vsl {

/// How an element becomes a number of [a, b): min(a + width * ((element >> shift) * unit), last)
template <class R>
struct mapping {
    int shift;
    R unit, a, width, last;
};

/// The state of a linear recurrence y[j+3] = c[2]*y[j+2] + c[1]*y[j+1] + c[0]*y[j], for 8 sequences at once
struct mrg_lanes {
    uint64_t y[2][3][8]; // of both components: lane i of y[.][j] is element 8*j + i
    uint64_t c[2][3];    // of the sequences that take every eighth element
};

struct loops {
    void (*doubles)(int32_t n, const uint32_t *words, double *r, mapping<double> how);
    void (*floats)(int32_t n, const uint32_t *words, float *r, mapping<float> how);
    void (*doubles_of_long)(int32_t n, const uint64_t *words, double *r, mapping<double> how);
    void (*floats_of_long)(int32_t n, const uint64_t *words, float *r, mapping<float> how);

    /// The next n elements x*powers[0], x*powers[1]... with the powers 0 to 8 of the multiplier
    void (*mcg31)(uint64_t x, const uint64_t powers[9], int32_t n, uint32_t *r);
    void (*mcg59)(uint64_t x, const uint64_t powers[9], int32_t n, uint64_t *r);
    /// 8 * blocks elements
    void (*mrg32k3a)(mrg_lanes &lanes, int32_t blocks, uint32_t *r);

    void (*mt19937_refill)(uint32_t state[624]);
    void (*mt19937_temper)(int32_t n, const uint32_t *state, uint32_t *r);
    void (*sfmt19937_refill)(uint32_t state[624]);
    void (*r250_refill)(uint32_t state[250]);
    /// 4 * blocks words
    void (*philox)(uint64_t low, uint64_t high, uint64_t key, int32_t blocks, uint32_t *r);
};

} // namespace xkl::vsl

namespace xkl::kernels::sse2 {
extern const vsl::loops generator_loops;
}
namespace xkl::kernels::avx2 {
extern const vsl::loops generator_loops;
}
namespace xkl::kernels::avx512 {
extern const vsl::loops generator_loops;
}
