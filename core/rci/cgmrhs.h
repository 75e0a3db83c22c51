// Conjugate gradients by reverse communication for several right-hand sides, solved one after another. tmp
// has 3 + nrhs columns of n: the direction (to be multiplied), its product with A, the preconditioned
// residual, and the residuals. ipar(22) and ipar(23) tell where in tmp the vector to work on and its result
// are. ipar(129) and dpar(129) onwards keep iterations and squared residual norms of each side.
#pragma once

#include "conjugate_gradients.h"

namespace xkl::core {

template <class T>
void cgmrhs_init(const int64_t *n, T *, const int64_t *nrhs, const T *, const int64_t *method,
                 int64_t *request, int64_t *ipar, T *dpar, T *tmp)
{
    if (*n <= 0 || *nrhs <= 0 || *method != 1) {
        *request = XKL_ISS_INIT_FAILED;
        return;
    }
    iss::set_defaults(*n, ipar, dpar);
    std::fill(ipar + iss::control_length, ipar + iss::control_length + *nrhs, int64_t{0});
    std::fill(dpar + iss::control_length, dpar + iss::control_length + *nrhs, T(0));
    std::fill(tmp, tmp + (3 + *nrhs) * *n, T(0));
    *request = XKL_ISS_DONE;
}

template <class T>
void cgmrhs_check(const int64_t *n, T *, const int64_t *nrhs, const T *, int64_t *request, int64_t *ipar,
                  T *dpar, T *)
{
    iss::findings found("DCGMRHS_CHECK", ipar);
    iss::look_for_mistakes(found, *n, ipar, dpar);
    if (*nrhs <= 0)
        found.error("nrhs must be positive");
    *request = found.request();
}

/// A side that is done makes room for the next; what any of them can't do ends them all.
template <class T>
void cgmrhs(const int64_t *n, T *x, const int64_t *nrhs, const T *b, int64_t *request, int64_t *ipar,
            T *dpar, T *tmp)
{
    const int64_t length = *n;
    for (;;) {
        const int64_t side = ipar[iss::current_side];
        T *const residuals = tmp + (3 + side) * length;
        iss::cg_system<T> system{length,       x + side * length, b + side * length, tmp,
                                 tmp + length, tmp + 2 * length,  residuals,         ipar,
                                 dpar};
        *request = system.step();
        ipar[iss::control_length + side] = ipar[iss::iterations];
        dpar[iss::control_length + side] = dpar[iss::residual];
        const bool preconditions = *request == XKL_ISS_PRECONDITION;
        ipar[iss::source] = preconditions ? (3 + side) * length + 1 : 1;
        ipar[iss::destination] = (preconditions ? 2 : 1) * length + 1;
        if (*request != XKL_ISS_DONE || side + 1 >= *nrhs)
            return;
        ++ipar[iss::current_side];
        ipar[iss::stage] = iss::cg_start;
    }
}

template <class T>
void cgmrhs_get(const int64_t *, T *, const int64_t *nrhs, const T *, int64_t *, int64_t *ipar, T *, T *,
                int64_t *iterations)
{
    for (int64_t side = 0; side < *nrhs; ++side)
        iterations[side] = ipar[iss::control_length + side];
}

} // namespace xkl::core
