// The search for a NaN. A comparison that is true for unordered operands takes two elements at a time and needs no
// second look, as a sum would: that is NaN for infinities too, raises flags or traps for data that is good, and is
// slow on denormals. Kernels for wide registers are chosen by what the processor has.
#pragma once

#include "lapacke/stored_lines.h"

namespace xkl::lapacke {

/// Whether an element of the lines is a NaN. Neither is empty.
bool lines_hold_nan(const float *a, const line_starts &starts, const line_parts &parts);
bool lines_hold_nan(const double *a, const line_starts &starts, const line_parts &parts);

/// A kernel for each type; one set an instruction set.
struct nan_kernels {
    bool (*of_floats)(const float *, const line_starts &, const line_parts &);
    bool (*of_doubles)(const double *, const line_starts &, const line_parts &);
};
extern const nan_kernels nan_kernels_avx2;
extern const nan_kernels nan_kernels_avx512;

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

/// Whether an element of the lines is a NaN; no, if there is no array.
template <class T>
bool holds_nan(const T *a, line_starts starts, line_parts parts)
{
    if (!a || parts.count <= 0 || parts.low >= parts.high)
        return false;
    constexpr int64_t r = element<T>::reals;
    return lines_hold_nan(
        reinterpret_cast<const typename element<T>::real *>(a), {r * starts.step, r * starts.growth},
        {parts.count, r * parts.first, r * parts.last, r * parts.slope, r * parts.low, r * parts.high});
}

} // namespace xkl::lapacke
