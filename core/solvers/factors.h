// Entries that hand out what a solution holds: diagonals, and the Schur complement.
#pragma once

#include "solvers/handle.h"

namespace xkl::core {

int32_t pardiso_getdiag(void *const *pt, void *df, void *da, const int64_t *mnum, int64_t *error);
int32_t pardiso_getdiag_d(void *const *pt, double *df, double *da, const int64_t *mnum, int64_t *error);
int32_t pardiso_getdiag_z(void *const *pt, std::complex<double> *df, std::complex<double> *da,
                          const int64_t *mnum, int64_t *error);

void pardiso_export(void *const *pt, void *values, int64_t *ia, int64_t *ja, const int64_t *step,
                    const int64_t *iparm, int64_t *error);
void pardiso_export_s(void *const *pt, float *values, int64_t *ia, int64_t *ja, const int64_t *step,
                      const int64_t *iparm, int64_t *error);
void pardiso_export_d(void *const *pt, double *values, int64_t *ia, int64_t *ja, const int64_t *step,
                      const int64_t *iparm, int64_t *error);
void pardiso_export_c(void *const *pt, std::complex<float> *values, int64_t *ia, int64_t *ja,
                      const int64_t *step, const int64_t *iparm, int64_t *error);
void pardiso_export_z(void *const *pt, std::complex<double> *values, int64_t *ia, int64_t *ja,
                      const int64_t *step, const int64_t *iparm, int64_t *error);

} // namespace xkl::core
