// The parts of the distributions that are compiled once per instruction set: from vectors of uniform
// numbers in (0, 1) to vectors of numbers of a distribution. Everything around them (parameters, blocks,
// drawing from the stream) is compiled once for all. The last bits of a result may differ between the sets.
#pragma once

#include "vsl/instruction_set.h"

#include <cstdint>

namespace xkl::vsl {

/// n numbers; r may be u unless a number takes several uniform ones
template <class R, class... Parameters>
using transform = void (*)(int64_t n, const R *u, R *r, Parameters...);

template <class R>
struct transforms {
    transform<R, R, R> exponential;    // a, beta
    transform<R, R, R> laplace;        // a, beta
    transform<R, R, R, R> weibull;     // 1/alpha, a, beta
    transform<R, R, R> rayleigh;       // a, beta
    transform<R, R, R> gumbel;         // a, beta
    transform<R, R, R> cauchy;         // a, beta
    transform<R, R, R> box_muller;     // a, sigma; two uniform numbers each
    transform<R, R, R> box_muller2;    // a, sigma; n counts pairs of both
    transform<R, R, R> normal_inverse; // a, sigma
    transform<R, R, R> shifted_exp;    // b, beta; of normal numbers
};

/// What the candidates of a beta distribution are made from
struct beta_shapes {
    double low, high; // the shapes p and q, in order
    double share;     // the logarithm of low/(low + high), which may be too small for a number
    double slope, c;
    bool complement; // p > q
};

/// Two uniform numbers for each candidate; -1 is a refused one.
struct candidate_transforms {
    transform<double, double, double> gamma; // d, c
    transform<double, beta_shapes> beta;
};

// The tables of each set: filled by the compiler, never written.
#define XKL_TRANSFORM_TABLES(isa)                                                                          \
    namespace isa {                                                                                        \
    extern const transforms<double> double_transforms;                                                     \
    extern const transforms<float> float_transforms;                                                       \
    extern const candidate_transforms candidates;                                                          \
    }
XKL_TRANSFORM_TABLES(sse2)
XKL_TRANSFORM_TABLES(avx2)
XKL_TRANSFORM_TABLES(avx512)
#undef XKL_TRANSFORM_TABLES

template <class R>
const transforms<R> &current_transforms() noexcept
{
    if constexpr (sizeof(R) == 8)
        return of_set(sse2::double_transforms, avx2::double_transforms, avx512::double_transforms);
    else
        return of_set(sse2::float_transforms, avx2::float_transforms, avx512::float_transforms);
}

inline const candidate_transforms &current_candidates() noexcept
{
    return of_set(sse2::candidates, avx2::candidates, avx512::candidates);
}

} // namespace xkl::vsl
