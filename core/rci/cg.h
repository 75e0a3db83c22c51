// Conjugate gradients by reverse communication, for one right-hand side. tmp has four columns of n: the
// direction (to be multiplied), its product with A, the residual (to be preconditioned) and what comes of
// it.
#pragma once

#include "conjugate_gradients.h"

namespace xkl::core {

template <class T>
void cg_init(const int64_t *n, T *, const T *, int64_t *request, int64_t *ipar, T *dpar, T *tmp)
{
    if (*n <= 0) {
        *request = XKL_ISS_INIT_FAILED;
        return;
    }
    iss::set_defaults(*n, ipar, dpar);
    std::fill(tmp, tmp + 4 * *n, T(0));
    *request = XKL_ISS_DONE;
}

template <class T>
void cg_check(const int64_t *n, T *, const T *, int64_t *request, int64_t *ipar, T *dpar, T *)
{
    iss::findings found("DCG_CHECK", ipar);
    iss::look_for_mistakes(found, *n, ipar, dpar);
    *request = found.request();
}

template <class T>
void cg(const int64_t *n, T *x, const T *b, int64_t *request, int64_t *ipar, T *dpar, T *tmp)
{
    const int64_t length = *n;
    iss::cg_system<T> system{length,           x,    b,   tmp, tmp + length, tmp + 3 * length,
                             tmp + 2 * length, ipar, dpar};
    *request = system.step();
}

template <class T>
void cg_get(const int64_t *, T *, const T *, int64_t *, int64_t *ipar, T *, T *, int64_t *iterations)
{
    *iterations = ipar[iss::iterations];
}

} // namespace xkl::core
