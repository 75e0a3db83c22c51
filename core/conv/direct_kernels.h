// The inner sums of direct convolution, one table for each instruction set. All inputs have been copied to
// rows of neighbouring numbers before, so that there is one form of sum only; real and imaginary parts lie
// in rows of their own.
#pragma once

#include <cstdint>

namespace xkl::core::conv {

/// Numbers that may be read, but are not used, in front of and behind a row of b, and behind a row of the
/// result: the most that one step of a kernel computes.
template <class R>
inline constexpr int64_t kernel_width = 512 / sizeof(R);

/// Adds to z[i] the sum over q of a[q] b[offset + i - q], for the q where both exist.
template <class R>
struct strip {
    const R *a, *b;
    int64_t a_imaginary, b_imaginary; // distances from the real parts
    int64_t a_count, b_count, offset;
};

/// Sums of all the strips, for i from 0 to count - 1
template <class R>
using strip_sum = void (*)(const strip<R> *strips, int64_t strip_count, R *z, int64_t z_imaginary,
                           int64_t count);

template <class R>
struct strip_sums {
    strip_sum<R> real, complex;
};

struct direct_kernels {
    strip_sums<float> s;
    strip_sums<double> d;

    template <class R>
    const strip_sums<R> &of() const
    {
        if constexpr (sizeof(R) == sizeof(float))
            return s;
        else
            return d;
    }
};

extern const direct_kernels direct_baseline, direct_avx2, direct_avx512;

/// Those that the processor can run and the settings allow.
const direct_kernels &direct_kernels_in_force() noexcept;

} // namespace xkl::core::conv
