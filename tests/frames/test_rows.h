// The tables as tests see them: one row a routine, everything that can be expected of it.
#pragma once

struct routine_row {
    const char *name;          // DGEMM
    const char *body;          // the body's own symbol: xkl_blas__dgemm
    const char *core_entry;    // xkl_blas_dgemm
    const char *checker;       // xkl_blas_errchk_dgemm, or ""
    const char *frame;         // checked, guarded, registered, traced, through, solver, cluster...
    bool group;                // a trailing 0 goes to checker and core
    const char *result;        // -, int, logical, char, real, r4, r8, complex, first, pointer
    int failed_result;         // what a function returns after a failed check
    const char *reported_name; // with its blanks
    const char *format;        // of the trace line
    const char *trace_kinds;   // a letter an argument: c, i, e, v, p
    const char *names;         // argument names, blank separated
    const char *kinds;     // argument kinds as the table has them, blank separated; reading frames: with !
    const char *spellings; // every other exported spelling, blank separated
    const char *mixed;     // the body that takes values; of handle routines, that reads addresses
};

struct cblas_row {
    const char *name;    // cblas_dgemm
    const char *shape;   // gemm
    const char *routine; // DGEMM
    char element;        // S, D, C, Z, or -
    const char *result;
    const char *names; // argument names of the C list, blank separated
    const char *kinds; // kinds, as the routine's table has them, ! behind those that are written
};

struct lapacke_row {
    const char *name;    // LAPACKE_dgesv
    const char *routine; // dgesv
    char element;        // S, D, C, Z, or -
    const char *result;  // lapack_int, float, double
    bool has_layout, has_info, has_twin;
    const char *names, *types;           // of the high-level function, comma separated, without the layout
    const char *work_names, *work_types; // of the _work function
};

extern const routine_row blas_rows[];
extern const int blas_row_count;
extern const routine_row dfti_rows[];
extern const int dfti_row_count;
extern const routine_row lapack_rows[];
extern const int lapack_row_count;
extern const routine_row matcopy_rows[];
extern const int matcopy_row_count;
extern const routine_row lapacke_helper_rows[];
extern const int lapacke_helper_row_count;
extern const routine_row spblas_rows[];
extern const int spblas_row_count;
extern const routine_row inspector_rows[];
extern const int inspector_row_count;
extern const routine_row solvers_rows[];
extern const int solvers_row_count;
extern const routine_row rci_rows[];
extern const int rci_row_count;
extern const routine_row service_rows[];
extern const int service_row_count;
extern const cblas_row cblas_rows[];
extern const int cblas_row_count;
extern const lapacke_row lapacke_rows[];
extern const int lapacke_row_count;
