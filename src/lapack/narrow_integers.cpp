// The tridiagonal solvers for callers with 32-bit integers. Sizes are widened; the arrays go on as they are;
// info comes back in the caller's 32 bits and touches nothing beside them.
#include "frame/registration.h"
#include "lapack_frames.h"

namespace {

template <auto &solve, class Real>
void narrow_solve(const int32_t *n, const int32_t *nrhs, Real *dl, Real *d, Real *du, Real *b,
                  const int32_t *ldb, int32_t *info)
{
    const int64_t wide_n = *n, wide_nrhs = *nrhs, wide_ldb = *ldb;
    int64_t wide_info = 0;
    solve(&wide_n, &wide_nrhs, dl, d, du, b, &wide_ldb, &wide_info);
    *info = static_cast<int32_t>(wide_info);
}

template <auto &factor, class Real>
void narrow_factor(const int32_t *n, Real *dl, Real *d, Real *du, int32_t *info)
{
    const int64_t wide_n = *n;
    int64_t wide_info = 0;
    factor(&wide_n, dl, d, du, &wide_info);
    *info = static_cast<int32_t>(wide_info);
}

/// Straight to the core: solving with factors is neither checked nor traced for these callers. They hear of
/// what the core finds all the same, even if this is the first call of the process.
template <auto &core_solve, class Real>
void narrow_back_solve(const char *trans, const int32_t *n, const int32_t *nrhs, const Real *dl,
                       const Real *d, const Real *du, Real *b, const int32_t *ldb, int32_t *info)
{
    const int64_t wide_n = *n, wide_nrhs = *nrhs, wide_ldb = *ldb;
    int64_t wide_info = 0;
    xkl::register_reporter();
    core_solve(trans, &wide_n, &wide_nrhs, dl, d, du, b, &wide_ldb, &wide_info, 1);
    *info = static_cast<int32_t>(wide_info);
}

} // namespace

extern "C" {

void sdtsvb_4dfl(const int32_t *n, const int32_t *nrhs, float *dl, float *d, float *du, float *b,
                 const int32_t *ldb, int32_t *info)
{
    narrow_solve<xkl_lapack__sdtsvb_>(n, nrhs, dl, d, du, b, ldb, info);
}

void ddtsvb_4dfl(const int32_t *n, const int32_t *nrhs, double *dl, double *d, double *du, double *b,
                 const int32_t *ldb, int32_t *info)
{
    narrow_solve<xkl_lapack__ddtsvb_>(n, nrhs, dl, d, du, b, ldb, info);
}

void sdttrfb_4dfl(const int32_t *n, float *dl, float *d, float *du, int32_t *info)
{
    narrow_factor<xkl_lapack__sdttrfb_>(n, dl, d, du, info);
}

void ddttrfb_4dfl(const int32_t *n, double *dl, double *d, double *du, int32_t *info)
{
    narrow_factor<xkl_lapack__ddttrfb_>(n, dl, d, du, info);
}

void sdttrsb_4dfl(const char *trans, const int32_t *n, const int32_t *nrhs, const float *dl, const float *d,
                  const float *du, float *b, const int32_t *ldb, int32_t *info)
{
    narrow_back_solve<xkl_lapack_sdttrsb>(trans, n, nrhs, dl, d, du, b, ldb, info);
}

void ddttrsb_4dfl(const char *trans, const int32_t *n, const int32_t *nrhs, const double *dl,
                  const double *d, const double *du, double *b, const int32_t *ldb, int32_t *info)
{
    narrow_back_solve<xkl_lapack_ddttrsb>(trans, n, nrhs, dl, d, du, b, ldb, info);
}
}
