// The computations that the Fortran module calls, by the types of their arrays.
#include "core_dfti.h"
#include "fft/descriptor.h"

#include <type_traits>

using namespace xkl::fft;

namespace {

constexpr bool forward = true, backward = false;

template <class Element>
constexpr int32_t precision_of = sizeof(Element) == (std::is_floating_point_v<Element> ? 4 : 8)
                                     ? DFTI_SINGLE
                                     : DFTI_DOUBLE;

// The arrays must be there, as many as the descriptor computes with, and of its precision.
template <bool direction, class First, class... Rest>
int32_t compute(DFTI_DESCRIPTOR *const *handle, First *x, Rest *...rest)
{
    if (!handle)
        return DFTI_INCONSISTENT_CONFIGURATION;
    const descriptor *of = live_descriptor(*handle);
    if (!of)
        return DFTI_BAD_DESCRIPTOR;
    xkl_dft_compute *routine = direction == forward ? of->forward : of->backward;
    if (!routine)
        return DFTI_INVALID_CONFIGURATION;
    if (of->array_count != 1 + sizeof...(rest) || of->precision != precision_of<First>)
        return DFTI_INCONSISTENT_CONFIGURATION;
    void *arrays[4] = {x, rest...};
    return routine(*handle, arrays[0], arrays[1], arrays[2], arrays[3], nullptr);
}

} // namespace

extern "C" {

int32_t xkl_dft_dfti_compute_forward_c(DFTI_DESCRIPTOR *const *handle, XKL_Complex8 *x)
{
    return compute<forward>(handle, x);
}
int32_t xkl_dft_dfti_compute_forward_cc(DFTI_DESCRIPTOR *const *handle, XKL_Complex8 *x, XKL_Complex8 *y)
{
    return compute<forward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_forward_d(DFTI_DESCRIPTOR *const *handle, double *x)
{
    return compute<forward>(handle, x);
}
int32_t xkl_dft_dfti_compute_forward_dd(DFTI_DESCRIPTOR *const *handle, double *x, double *y)
{
    return compute<forward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_forward_dddd(DFTI_DESCRIPTOR *const *handle, double *x, double *y, double *z,
                                          double *w)
{
    return compute<forward>(handle, x, y, z, w);
}
int32_t xkl_dft_dfti_compute_forward_dz(DFTI_DESCRIPTOR *const *handle, double *x, XKL_Complex16 *y)
{
    return compute<forward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_forward_s(DFTI_DESCRIPTOR *const *handle, float *x)
{
    return compute<forward>(handle, x);
}
int32_t xkl_dft_dfti_compute_forward_sc(DFTI_DESCRIPTOR *const *handle, float *x, XKL_Complex8 *y)
{
    return compute<forward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_forward_ss(DFTI_DESCRIPTOR *const *handle, float *x, float *y)
{
    return compute<forward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_forward_ssss(DFTI_DESCRIPTOR *const *handle, float *x, float *y, float *z,
                                          float *w)
{
    return compute<forward>(handle, x, y, z, w);
}
int32_t xkl_dft_dfti_compute_forward_z(DFTI_DESCRIPTOR *const *handle, XKL_Complex16 *x)
{
    return compute<forward>(handle, x);
}
int32_t xkl_dft_dfti_compute_forward_zz(DFTI_DESCRIPTOR *const *handle, XKL_Complex16 *x, XKL_Complex16 *y)
{
    return compute<forward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_backward_c(DFTI_DESCRIPTOR *const *handle, XKL_Complex8 *x)
{
    return compute<backward>(handle, x);
}
int32_t xkl_dft_dfti_compute_backward_cc(DFTI_DESCRIPTOR *const *handle, XKL_Complex8 *x, XKL_Complex8 *y)
{
    return compute<backward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_backward_cs(DFTI_DESCRIPTOR *const *handle, XKL_Complex8 *x, float *y)
{
    return compute<backward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_backward_d(DFTI_DESCRIPTOR *const *handle, double *x)
{
    return compute<backward>(handle, x);
}
int32_t xkl_dft_dfti_compute_backward_dd(DFTI_DESCRIPTOR *const *handle, double *x, double *y)
{
    return compute<backward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_backward_dddd(DFTI_DESCRIPTOR *const *handle, double *x, double *y, double *z,
                                           double *w)
{
    return compute<backward>(handle, x, y, z, w);
}
int32_t xkl_dft_dfti_compute_backward_s(DFTI_DESCRIPTOR *const *handle, float *x)
{
    return compute<backward>(handle, x);
}
int32_t xkl_dft_dfti_compute_backward_ss(DFTI_DESCRIPTOR *const *handle, float *x, float *y)
{
    return compute<backward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_backward_ssss(DFTI_DESCRIPTOR *const *handle, float *x, float *y, float *z,
                                           float *w)
{
    return compute<backward>(handle, x, y, z, w);
}
int32_t xkl_dft_dfti_compute_backward_z(DFTI_DESCRIPTOR *const *handle, XKL_Complex16 *x)
{
    return compute<backward>(handle, x);
}
int32_t xkl_dft_dfti_compute_backward_zd(DFTI_DESCRIPTOR *const *handle, XKL_Complex16 *x, double *y)
{
    return compute<backward>(handle, x, y);
}
int32_t xkl_dft_dfti_compute_backward_zz(DFTI_DESCRIPTOR *const *handle, XKL_Complex16 *x, XKL_Complex16 *y)
{
    return compute<backward>(handle, x, y);
}
}
