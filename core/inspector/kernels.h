// The innermost loops of products with a vector, real types, by instruction set.
//
// Slices: as many neighbouring rows as a register of 64 bytes has elements, stored element after element
// across the slice, so that a register holds one element of each row and no sum runs along a row. The short
// rows of a slice are filled up with places that have column -1. For matrices whose neighbouring rows are
// about equally long.
#pragma once

#include <cstdint>

namespace xkl::core::inspector {

template <class T>
inline constexpr int64_t slice_height = 64 / sizeof(T);

/// y := alpha A x + beta y, y not read where beta is 0, A in slices
template <class T>
struct slice_product {
    int64_t rows;
    const int64_t *starts; // of the slices, in values and columns
    const int32_t *columns;
    const T *values;
    T alpha, beta;
    const T *x;
    T *y;
};

/// The same by rows; places and columns are counted from base
template <class T, class I>
struct row_product {
    const int64_t *starts, *ends;
    const I *columns;
    const T *values;
    int64_t base;
    T alpha, beta;
    const T *x;
    T *y;
};

/// Slices, or rows, first to last - 1 on the calling thread
template <class T>
struct kernels_of {
    void (*slices)(const slice_product<T> &, int64_t first, int64_t last);
    void (*narrow)(const row_product<T, int32_t> &, int64_t first, int64_t last);
    void (*wide)(const row_product<T, int64_t> &, int64_t first, int64_t last);
};

struct product_kernels {
    kernels_of<float> s;
    kernels_of<double> d;

    template <class T>
    const kernels_of<T> &of() const
    {
        if constexpr (sizeof(T) == sizeof(float))
            return s;
        else
            return d;
    }
};

extern const product_kernels kernels_baseline, kernels_avx2, kernels_avx512;

/// Those that the processor can run and the settings allow
const product_kernels &kernels_in_force() noexcept;

} // namespace xkl::core::inspector
