// Triangles in single precision. LAPACK's own routines say when an element does not fit, and leave info as it
// was when all do; callers are promised a 0.
#pragma once

#include "elements.h"
#include "openblas/forward.h"

extern "C" {
void dlat2s_(const char *uplo, const int64_t *n, double *a, const int64_t *lda, float *sa,
             const int64_t *ldsa, int64_t *info, int64_t);
void zlat2c_(const char *uplo, const int64_t *n, XKL_Complex16 *a, const int64_t *lda, XKL_Complex8 *sa,
             const int64_t *ldsa, int64_t *info, int64_t);
}

namespace xkl::core {

inline void dlat2s(const char *uplo, const int64_t *n, double *a, const int64_t *lda, float *sa,
                   const int64_t *ldsa, int64_t *info)
{
    *info = 0;
    on_openblas(dlat2s_, uplo, n, a, lda, sa, ldsa, info, 1);
}

inline void zlat2c(const char *uplo, const int64_t *n, complex16 *a, const int64_t *lda, complex8 *sa,
                   const int64_t *ldsa, int64_t *info)
{
    *info = 0;
    on_openblas(zlat2c_, uplo, n, a, lda, sa, ldsa, info, 1);
}

} // namespace xkl::core
