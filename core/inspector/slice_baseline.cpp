// Slices for every processor of the architecture.
#include "inspector/slices.h"

#include "inspector/slice_kernels.h"

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

} // namespace

const slice_kernels slices_baseline = {multiply_slices<float, sums<float>>,
                                       multiply_slices<double, sums<double>>};

} // namespace xkl::core::inspector
