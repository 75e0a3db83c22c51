// Products for every processor of the architecture.
#include "inspector/kernels.h"

#include "inspector/kernel_loops.h"

namespace xkl::core::inspector {
namespace {

template <class T>
struct sums {
    T all[slice_height<T>];

    void clear()
    {
        for (T &each : all)
            each = T(0);
    }
    void add(const T *values, const int32_t *columns, const T *x)
    {
        for (int64_t i = 0; i < slice_height<T>; ++i)
            all[i] += columns[i] >= 0 ? values[i] * x[columns[i]] : T(0);
    }
    void store(T *to) const
    {
        for (int64_t i = 0; i < slice_height<T>; ++i)
            to[i] = all[i];
    }
};

template <class T, class I>
T dot(const T *values, const I *columns, int64_t count, const T *x, int64_t base)
{
    T even(0), odd(0);
    int64_t k = 0;
    for (; k + 2 <= count; k += 2) {
        even += values[k] * x[columns[k] - base];
        odd += values[k + 1] * x[columns[k + 1] - base];
    }
    if (k < count)
        even += values[k] * x[columns[k] - base];
    return even + odd;
}

template <class T>
constexpr kernels_of<T> made = {multiply_slices<T, sums<T>>, multiply_rows<T, int32_t, dot<T, int32_t>>,
                                multiply_rows<T, int64_t, dot<T, int64_t>>};

} // namespace

const product_kernels kernels_baseline = {made<float>, made<double>};

} // namespace xkl::core::inspector
