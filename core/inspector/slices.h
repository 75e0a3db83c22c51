// Rows in slices: as many neighbouring rows as a register of 64 bytes has real elements, stored element after element
// across the slice, so that a register holds one element of each row and no sum runs along a row. The short rows of
// a slice are filled up with places that have column -1. For matrices whose neighbouring rows are about equally long.
#pragma once

#include <cstdint>

namespace xkl::core::inspector {

template <class T>
inline constexpr int64_t slice_height = 64 / sizeof(T);

/// What a product with a vector reads: y := alpha A x + beta y, y not read where beta is 0
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

/// Slices first to last - 1 on the calling thread, for one instruction set
struct slice_kernels {
    void (*s)(const slice_product<float> &, int64_t first, int64_t last);
    void (*d)(const slice_product<double> &, int64_t first, int64_t last);
};

extern const slice_kernels slices_baseline, slices_avx2, slices_avx512;

/// Those that the processor can run and the settings allow
const slice_kernels &slices_in_force() noexcept;

} // namespace xkl::core::inspector
