// The normal distribution, the lognormal one, and normal vectors with a given covariance.
#include "vsl/distributions/gaussian.h"

using namespace xkl::vsl;

namespace {

template <class R>
int32_t lognormal(int32_t method, stream &s, int64_t n, R *r, R a, R sigma, R b, R beta)
{
    const int32_t normal_method =
        without_flag(method) == VSL_RNG_METHOD_LOGNORMAL_BOXMULLER2 ? VSL_RNG_METHOD_GAUSSIAN_BOXMULLER2
        : without_flag(method) == VSL_RNG_METHOD_LOGNORMAL_ICDF     ? VSL_RNG_METHOD_GAUSSIAN_ICDF
                                                                    : -1;
    const auto transform = current_transforms<R>().shifted_exp;
    return in_blocks(n, [&](int64_t first, int32_t count) {
        const int32_t status = gaussian(normal_method, s, count, r + first, a, sigma);
        if (status >= 0)
            transform(count, r + first, r + first, b, beta);
        return status;
    });
}

/// The lower triangular factor, as the caller stores it
template <class R>
struct factor {
    const R *t;
    int64_t dimension;
    int32_t storage;

    /// What the elements x[0..i] of a vector make of element i
    R row_times(int64_t i, const R *x) const
    {
        if (storage == VSL_MATRIX_STORAGE_DIAGONAL)
            return t[i] * x[i];
        const R *const row = t + (storage == VSL_MATRIX_STORAGE_FULL ? i * dimension : i * (i + 1) / 2);
        R sum = 0;
        for (int64_t j = 0; j <= i; ++j)
            sum += row[j] * x[j];
        return sum;
    }
};

/// n vectors by rows. A row is multiplied in place from its end, since an element needs those before it.
template <class R>
int32_t gaussian_mv(int32_t method, stream &s, int64_t n, R *r, int64_t dimension, int32_t storage,
                    const R *a, const R *t)
{
    if (storage < VSL_MATRIX_STORAGE_FULL || storage > VSL_MATRIX_STORAGE_DIAGONAL)
        return VSL_ERROR_BADARGS;
    const factor<R> lower{t, dimension, storage};
    const int64_t rows_at_once = 2 * std::max<int64_t>(1, block / dimension); // even, as pairs want it
    for (int64_t first = 0; first < n; first += rows_at_once) {
        const int64_t rows = std::min(rows_at_once, n - first);
        R *const start = r + first * dimension;
        const int32_t status = gaussian(method, s, rows * dimension, start, R(0), R(1));
        if (status < 0)
            return status;
        for (int64_t row = 0; row < rows; ++row)
            for (int64_t i = dimension - 1; i >= 0; --i)
                start[row * dimension + i] = a[i] + lower.row_times(i, start + row * dimension);
    }
    return VSL_STATUS_OK;
}

} // namespace

XKL_VSL_KERNEL _vsldRngGaussian(int32_t method, void *handle, int32_t n, double *r, double a, double sigma)
{
    return on_stream(handle, [&](stream &s) { return gaussian(method, s, n, r, a, sigma); });
}
XKL_VSL_KERNEL _vslsRngGaussian(int32_t method, void *handle, int32_t n, float *r, float a, float sigma)
{
    return on_stream(handle, [&](stream &s) { return gaussian(method, s, n, r, a, sigma); });
}

XKL_VSL_KERNEL _vsldRngLognormal(int32_t method, void *handle, int32_t n, double *r, double a, double sigma,
                                 double b, double beta)
{
    return on_stream(handle, [&](stream &s) { return lognormal(method, s, n, r, a, sigma, b, beta); });
}
XKL_VSL_KERNEL _vslsRngLognormal(int32_t method, void *handle, int32_t n, float *r, float a, float sigma,
                                 float b, float beta)
{
    return on_stream(handle, [&](stream &s) { return lognormal(method, s, n, r, a, sigma, b, beta); });
}

XKL_VSL_KERNEL _vsldRngGaussianMV(int32_t method, void *handle, int32_t n, double *r, int32_t dimension,
                                  int32_t storage, const double *a, const double *t)
{
    return on_stream(handle,
                     [&](stream &s) { return gaussian_mv(method, s, n, r, dimension, storage, a, t); });
}
XKL_VSL_KERNEL _vslsRngGaussianMV(int32_t method, void *handle, int32_t n, float *r, int32_t dimension,
                                  int32_t storage, const float *a, const float *t)
{
    return on_stream(handle,
                     [&](stream &s) { return gaussian_mv(method, s, n, r, dimension, storage, a, t); });
}
