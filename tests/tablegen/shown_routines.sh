#!/bin/sh
# Every family's routines can be shown, by the names under which users know them.
# usage: shown_routines.sh TABLEGEN TABLES...: the tables as options of tablegen
set -eu
tablegen=$1
shift

# A name, and what stands in its lines.
while read -r name text; do
    "$tablegen" show --option "$name" "$@" | grep -qF -- "$text" || {
        echo "shown for $name: no \`$text\`"
        exit 1
    }
done <<'END'
XKL_GET_MAX_THREADS return xkl_serv_get_max_threads();
DGEMM return xkl::checked_frame<row_of_dgemm>(transa,
pardiso return xkl::solver_frame<row_of_pardiso>(pt,
xkl_sparse_d_mv asm("jmp xkl_sparse_d_mv_i8@PLT");
DFTI_CREATE_DESCRIPTOR_1D return xkl::through_frame<
DftiCreateDescriptor written by hand in src/dfti
LAPACKE_dge_trans return xkl::lapacke::ge_trans(layout,
LAPACKE_dgetrf return LAPACKE_dgetrf_work(
cblas_dgemm return xkl::cblas::gemm<cblas_dgemm_row>(layout,
vdExp void vmdExpI_64(
vmlSetMode return SetMode(*mode);
vdRngGaussian return generate<vdRngGaussian_row>(method,
vsldConvExec1D return exec_1d<task_kind::convolution, 'd'>(task,
fftwf_plan_dft_1d xkl::fftw::plan_dft<float>(1,
END
if "$tablegen" show --option dgemmm "$@" 2>/dev/null; then
    echo "shown for dgemmm, which no table has"
    exit 1
fi
