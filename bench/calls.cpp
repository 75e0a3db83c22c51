// Makes one kind of call COUNT times over the null core, to be counted by callgrind: `bench_calls CASE COUNT`.
// The cost of a frame is the difference between its case and the case of the bare core call.
#include "core_blas.h"
#include "core_inspector.h"
#include "core_lapack.h"
#include "core_matcopy.h"
#include "core_solvers.h"
#include "core_spblas.h"
#include "core_vml.h"
#include "xkl.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const int64_t n = 2, one = 1;
const double alpha = 1;
double a[4], b[4], c[4];
int64_t ipiv[2], info;
char letter[] = "N";
void *pt[64];
const matrix_descr general = {SPARSE_MATRIX_TYPE_GENERAL, SPARSE_FILL_MODE_FULL, SPARSE_DIAG_NON_UNIT};

struct measured {
    const char *name;
    void (*call)();
};

const measured cases[] = {
    {"core_daxpy", [] { xkl_blas_daxpy(&n, &alpha, a, &one, b, &one); }},
    {"daxpy", [] { daxpy(&n, &alpha, a, &one, b, &one); }},
    {"core_dgemm",
     [] { xkl_blas_dgemm(letter, letter, &n, &n, &n, &alpha, a, &n, b, &n, &alpha, c, &n, 1, 1); }},
    {"dgemm", [] { dgemm(letter, letter, &n, &n, &n, &alpha, a, &n, b, &n, &alpha, c, &n); }},
    {"core_dgemv", [] { xkl_blas_dgemv(letter, &n, &n, &alpha, a, &n, b, &one, &alpha, c, &one, 1); }},
    {"dgemv", [] { dgemv(letter, &n, &n, &alpha, a, &n, b, &one, &alpha, c, &one); }},
    {"core_ddot", [] { xkl_blas_ddot(&n, a, &one, b, &one); }},
    {"ddot", [] { ddot(&n, a, &one, b, &one); }},
    {"core_dgetrf", [] { xkl_lapack_dgetrf(&n, &n, a, &n, ipiv, &info); }},
    {"dgetrf", [] { dgetrf(&n, &n, a, &n, ipiv, &info); }},
    {"core_dgetri", [] { xkl_lapack_dgetri(&n, a, &n, ipiv, b, &n, &info); }},
    {"dgetri", [] { dgetri(&n, a, &n, ipiv, b, &n, &info); }},
    {"core_dpotf2", [] { xkl_lapack_dpotf2(letter, &n, a, &n, &info, 1); }},
    {"dpotf2", [] { dpotf2(letter, &n, a, &n, &info); }},
    {"core_domatcopy", [] { xkl_trans_xkl_domatcopy('C', 'T', 2, 2, 1.0, a, 2, b, 2); }},
    {"domatcopy", [] { XKL_Domatcopy('C', 'T', 2, 2, 1.0, a, 2, b, 2); }},
    {"core_vdexp", [] { xkl_vml_serv_threader_d_1i_1o(nullptr, 1, a, b, nullptr, 1); }},
    {"vdexp", [] { vdExp(1, a, b); }},
    {"vmdexp", [] { vmdExp(1, a, b, VML_LA); }},
    {"core_dcsrmv",
     [] {
         xkl_spblas_xkl_dcsrmv(letter, &n, &n, &alpha, "GLNF", a, ipiv, ipiv, ipiv, b, &alpha, c, 1, 1);
     }},
    {"dcsrmv", [] { xkl_dcsrmv(letter, &n, &n, &alpha, "GLNF", a, ipiv, ipiv, ipiv, b, &alpha, c); }},
    {"core_handle_mv",
     [] { xkl_sparse_d_mv_i8(SPARSE_OPERATION_NON_TRANSPOSE, 1, nullptr, general, a, 1, b); }},
    {"handle_mv", [] { xkl_sparse_d_mv(SPARSE_OPERATION_NON_TRANSPOSE, 1, nullptr, general, a, 1, b); }},
    {"core_pardiso",
     [] { xkl_pds_pardiso(pt, &n, &n, &n, &n, &n, a, ipiv, ipiv, ipiv, &n, ipiv, &n, b, c, &info); }},
    {"pardiso", [] { pardiso(pt, &n, &n, &n, &n, &n, a, ipiv, ipiv, ipiv, &n, ipiv, &n, b, c, &info); }},
    {"cblas_dgemm_row",
     [] { cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, 2, 2, 2, 1.0, a, 2, b, 2, 1.0, c, 2); }},
    {"cblas_dgemm_column",
     [] { cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, 2, 2, 2, 1.0, a, 2, b, 2, 1.0, c, 2); }},
    {"cblas_ddot", [] { cblas_ddot(2, a, 1, b, 1); }},
};

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3)
        for (const measured &each : cases)
            if (std::strcmp(each.name, argv[1]) == 0) {
                for (long i = std::atol(argv[2]); i > 0; --i)
                    each.call();
                return 0;
            }
    std::fprintf(stderr, "usage: bench_calls CASE COUNT; cases:");
    for (const measured &each : cases)
        std::fprintf(stderr, " %s", each.name);
    std::fprintf(stderr, "\n");
    return 1;
}
