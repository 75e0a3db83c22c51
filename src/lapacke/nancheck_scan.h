// The search for a NaN. A comparison that is true for unordered operands takes two elements at a time and
// needs no second look, as a sum would: that is NaN for infinities too, raises flags or traps for data that
// is good, and is slow on denormals. Kernels for wide registers are chosen by what the processor has.
#pragma once

#include "lapacke/stored_lines.h"

namespace xkl::lapacke {

/// The searches for one type: through reals that lie side by side, and through lines.
template <class R>
struct nan_kernel {
    bool (*run)(const R *, int64_t);
    bool (*lines)(const R *, const line_starts &, const line_parts &);
};

/// One set an instruction set
struct nan_kernels {
    nan_kernel<float> floats;
    nan_kernel<double> doubles;
};
extern const nan_kernels nan_kernels_baseline;
extern const nan_kernels nan_kernels_avx2;
extern const nan_kernels nan_kernels_avx512;

// By the kernel that suits the processor. No pointer is null, no count zero.
bool run_holds_nan(const float *a, int64_t count);
bool run_holds_nan(const double *a, int64_t count);
bool lines_hold_nan(const float *a, const line_starts &starts, const line_parts &parts);
bool lines_hold_nan(const double *a, const line_starts &starts, const line_parts &parts);

/// The reals that elements are made of: a complex element is a NaN if either part is one.
template <class T>
struct element {
    using real = T;
    static constexpr int64_t reals = 1;
};
template <>
struct element<XKL_Complex8> {
    using real = float;
    static constexpr int64_t reals = 2;
};
template <>
struct element<XKL_Complex16> {
    using real = double;
    static constexpr int64_t reals = 2;
};

template <class T>
const typename element<T>::real *reals_of(const T *a)
{
    return reinterpret_cast<const typename element<T>::real *>(a);
}

/// Up to as many reals, a look at each costs less than the choice of a kernel.
inline constexpr int64_t few_reals = 16;

template <class R>
[[gnu::always_inline]] inline bool one_holds_nan(const R *p, int64_t count)
{
    bool found = false;
    for (int64_t i = 0; i < count; ++i)
        found |= p[i] != p[i];
    return found;
}

/// Whether one of n elements is a NaN; no, if there is no array.
template <class T>
[[gnu::always_inline]] inline bool holds_nan(const T *a, int64_t n)
{
    if (!a || n <= 0)
        return false;
    const int64_t count = n * element<T>::reals;
    return count <= few_reals ? one_holds_nan(reals_of(a), count) : run_holds_nan(reals_of(a), count);
}

/// Whether an element of the lines is a NaN; no, if there is no array.
template <class T>
[[gnu::always_inline]] inline bool holds_nan(const T *a, const line_starts &starts, const line_parts &parts)
{
    constexpr int64_t r = element<T>::reals;
    if (!a || parts.count <= 0 || parts.low >= parts.high)
        return false;
    if (parts.count <= few_reals && parts.high - parts.low <= few_reals &&
        parts.count * (parts.high - parts.low) <= few_reals) {
        bool found = false;
        for (int64_t k = 0; k < parts.count; ++k)
            found |= one_holds_nan(reals_of(a + starts[k]) + r * parts.first_of(k),
                                   r * (parts.last_of(k) - parts.first_of(k)));
        return found;
    }
    return lines_hold_nan(
        reals_of(a), {r * starts.step, r * starts.growth},
        {parts.count, r * parts.first, r * parts.last, r * parts.slope, r * parts.low, r * parts.high});
}

} // namespace xkl::lapacke
