// Compact matrices: the elements (i, j) of as many matrices as a register has lanes lie together, real
// parts before imaginary ones, so that one instruction works on all of them. Such a set of matrices is a
// pack. Layouts and transpositions are nothing but distances here, and a conjugate is the sign of the
// imaginary parts.
#pragma once

#include "elements.h"

namespace xkl::core {

/// A matrix of packs; R is a const type for inputs.
template <class R>
struct compact_view {
    R *first;
    int64_t row, column; // from an element to the next in its column, and in its row, in reals
    int64_t pack;        // from a pack to the next
    bool conjugated = false;
};

/// C := alpha*A*B + beta*C, the real and imaginary part of a factor in this order
template <class R>
struct compact_product {
    int64_t m, n, k;
    R alpha[2], beta[2];
    compact_view<const R> a, b;
    compact_view<R> c;
};

/// B := alpha*inv(A)*B, A lower triangular of order m
template <class R>
struct compact_solution {
    int64_t m, n;
    R alpha[2];
    bool unit;
    compact_view<const R> a;
    compact_view<R> b;
};

/// The routines for one element type, each for one pack
template <class R>
struct compact_routines {
    void (*product)(const compact_product<R> &, int64_t pack);
    void (*solution)(const compact_solution<R> &, int64_t pack);
};

/// The routines for one width of registers
struct compact_kernels {
    compact_routines<float> s, c;
    compact_routines<double> d, z;
};

// For 128, 256 and 512 bits: on any processor, and on those that have such registers.
extern const compact_kernels compact_baseline[3];
extern const compact_kernels compact_avx2, compact_avx512;

} // namespace xkl::core
