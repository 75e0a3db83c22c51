// Factorizations of compact matrices: what blas/compact.h is to products and solves.
#pragma once

#include "blas/compact.h"

namespace xkl::core {

/// The routines for one element type, each for one pack, whose first element the view names
template <class R>
struct compact_factorizations {
    /// A = L*U, m by n, without pivoting
    void (*lu)(const compact_view<R> &a, int64_t m, int64_t n);
    /// A = L*L**H; the other triangle is left alone
    void (*cholesky)(const compact_view<R> &a, int64_t n);
    /// A = Q*R, m by n, as ?GEQRF stores it
    void (*qr)(const compact_view<R> &a, int64_t m, int64_t n, R *tau);
    /// inv(A) from the factors that lu made
    void (*inverse)(const compact_view<R> &a, int64_t n);
};

/// The routines for one width of registers
struct compact_factor_kernels {
    compact_factorizations<float> s, c;
    compact_factorizations<double> d, z;
};

// For 128, 256 and 512 bits: on any processor, and on those that have such registers.
extern const compact_factor_kernels compact_factor_baseline[3];
extern const compact_factor_kernels compact_factor_avx2, compact_factor_avx512;

} // namespace xkl::core
