#include "conv/task.h"

#include "xkl_vsl_types.h"

#include <complex>
#include <cstdlib>

namespace xkl::core::conv {
namespace {

int64_t element_bytes(const settings &t) noexcept
{
    return (t.is_complex() ? 2 : 1) *
           (t.precision == VSL_CONV_PRECISION_SINGLE ? sizeof(float) : sizeof(double));
}

template <class T>
T *copy_dimensions(const settings &t, const T *from, const int32_t *strides, int d, T *to) noexcept
{
    if (d == t.rank) {
        *to = *from;
        return to + 1;
    }
    const int64_t stride = strides[d];
    if (stride < 0)
        from -= (int64_t{t.x_shape[d]} - 1) * stride;
    for (int64_t i = 0; i < t.x_shape[d]; ++i)
        to = copy_dimensions(t, from + i * stride, strides, d + 1, to);
    return to;
}

template <class T>
void copy_as(const task &t, const array &x) noexcept
{
    copy_dimensions(t.set, static_cast<const T *>(x.elements), x.strides, 0, static_cast<T *>(t.x));
}

} // namespace

int64_t bytes_of(const settings &t, const int32_t *shape) noexcept
{
    int64_t bytes = element_bytes(t);
    for (int d = 0; d < t.rank; ++d)
        if (__builtin_mul_overflow(bytes, int64_t{shape[d]}, &bytes))
            return -1;
    return bytes;
}

bool addressable(const settings &t, const int32_t *shape, const int32_t *strides) noexcept
{
    int64_t elements = 1;
    for (int d = 0; d < t.rank; ++d) {
        const int64_t reach = (int64_t{shape[d]} - 1) * std::abs(int64_t{strides[d]});
        if (__builtin_add_overflow(elements, reach, &elements))
            return false;
    }
    int64_t bytes = 0;
    return !__builtin_mul_overflow(elements, element_bytes(t), &bytes);
}

void copy_fixed_input(const task &t, const array &x) noexcept
{
    const bool is_single = t.set.precision == VSL_CONV_PRECISION_SINGLE;
    if (t.set.is_complex())
        is_single ? copy_as<std::complex<float>>(t, x) : copy_as<std::complex<double>>(t, x);
    else
        is_single ? copy_as<float>(t, x) : copy_as<double>(t, x);
}

} // namespace xkl::core::conv
