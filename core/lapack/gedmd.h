// ?GEDMD: the arguments of the dynamic mode decomposition, checked and handed on.
#pragma once

#include "dmd.h"

namespace xkl::core {

template <class T>
int64_t refuse_dmd(const dmd_problem<T> &p)
{
    constexpr int64_t c = element<T>::is_complex; // complex eigenvalues take one argument
    const bool residuals = is(p.residuals, 'R');
    return refuse<T>("?GEDMD", {{!is_one_of(p.scaling, "SCYN"), 1},
                                {!is_one_of(p.vectors, "VFN"), 2},
                                {!is_one_of(p.residuals, "RN") || (residuals && !is(p.vectors, 'V')), 3},
                                {!is_one_of(p.extra, "REN"), 4},
                                {p.method < qr_svd || p.method > jacobi_svd, 5},
                                {p.m < 0, 6},
                                {p.n < 0 || p.n > p.m, 7},
                                {p.ldx < p.m, 9},
                                {p.ldy < p.m, 11},
                                {p.wanted_rank < -2 || p.wanted_rank == 0 || p.wanted_rank > p.n, 12},
                                {!(p.tolerance >= 0 && p.tolerance < 1), 13},
                                {p.ldz < p.m, 18 - c},
                                {!is(p.extra, 'N') && p.ldb < p.m, 21 - c},
                                {p.ldw < p.n, 23 - c},
                                {p.lds < p.n, 25 - c}});
}

/// Sizes in the places where callers look for them.
template <class T>
void tell_sizes(const workspace_sizes &sizes, const workspaces<T> &space)
{
    space.work[0] = work_size<T>(sizes.least);
    space.work[1] = work_size<T>(sizes.best);
    space.integers[0] = sizes.integers;
    if constexpr (element<T>::is_complex)
        space.reals[0] = work_size<real_of<T>>(sizes.reals);
}

template <class T>
bool is_query(const workspaces<T> &space)
{
    return space.size == -1 || space.integer_size == -1 ||
           (element<T>::is_complex && space.real_size == -1);
}

/// Checks the workspaces, the first of which is the argument `position`.
template <class T>
int64_t refuse_workspaces(const char *routine, const workspace_sizes &sizes, const workspaces<T> &space,
                          int64_t position)
{
    constexpr bool complex = element<T>::is_complex;
    return refuse<T>(routine, {{space.size < sizes.least, position + 1},
                               {complex && space.real_size < sizes.reals, position + 3},
                               {space.integer_size < sizes.integers, position + (complex ? 5 : 3)}});
}

/// What info says. `position` is that of the snapshots that can't be used, if any.
template <class T>
int64_t info_of(dmd_outcome outcome, const char *routine, int64_t x_position, int64_t y_position)
{
    switch (outcome) {
    case dmd_outcome::bad_x:
        return refuse<T>(routine, {{true, x_position}});
    case dmd_outcome::bad_y:
        return refuse<T>(routine, {{true, y_position}});
    case dmd_outcome::no_singular_values:
        return 2;
    case dmd_outcome::no_eigenvalues:
        return 3;
    case dmd_outcome::inconsistent:
        return 4;
    default:
        return 0;
    }
}

inline constexpr int64_t nothing_to_do = 1; // info for no snapshots
inline constexpr workspace_sizes sizes_of_nothing = {2, 2, 1, 1};

/// The decomposition in a workspace of which all has been found sufficient.
template <class T>
dmd_outcome decompose_in(const dmd_problem<T> &p, int64_t &k, const workspaces<T> &space)
{
    workspaces<T> behind = space;
    if constexpr (element<T>::is_complex) {
        behind.reals += p.n;
        behind.real_size -= p.n;
        return decompose(p, k, space.reals, behind);
    } else {
        behind.work += p.n;
        behind.size -= p.n;
        return decompose(p, k, space.work, behind);
    }
}

template <class T>
int64_t run_dmd(const dmd_problem<T> &p, int64_t &k, const workspaces<T> &space)
{
    if (const int64_t info = refuse_dmd(p); info != 0)
        return info;
    const bool empty = p.m == 0 || p.n == 0, query = is_query(space);
    const workspace_sizes sizes = empty ? sizes_of_nothing : sizes_of(p);
    if (query)
        tell_sizes(sizes, space);
    else if (empty)
        k = 0;
    if (query || empty)
        return empty ? nothing_to_do : 0;
    if (const int64_t info = refuse_workspaces("?GEDMD", sizes, space, element<T>::is_complex ? 25 : 26))
        return info;
    return info_of<T>(decompose_in(p, k, space), "?GEDMD", 8, 10);
}

template <class T>
void gedmd(const char *jobs, const char *jobz, const char *jobr, const char *jobf, const int64_t *whtsvd,
           const int64_t *m, const int64_t *n, T *x, const int64_t *ldx, T *y, const int64_t *ldy,
           const int64_t *nrnk, const T *tol, int64_t *k, T *reig, T *imeig, T *z, const int64_t *ldz,
           T *res, T *b, const int64_t *ldb, T *w, const int64_t *ldw, T *s, const int64_t *lds, T *work,
           const int64_t *lwork, int64_t *iwork, const int64_t *liwork, int64_t *info)
{
    *info = run_dmd<T>({*jobs, *jobz, *jobr, *jobf, *whtsvd, *m,  *n, x,    *ldx, y,    *ldy, *nrnk,
                        *tol,  reig,  imeig, z,     *ldz,    res, b,  *ldb, w,    *ldw, s,    *lds},
                       *k, {work, *lwork, nullptr, 0, iwork, *liwork});
}

template <class T>
void gedmd(const char *jobs, const char *jobz, const char *jobr, const char *jobf, const int64_t *whtsvd,
           const int64_t *m, const int64_t *n, T *x, const int64_t *ldx, T *y, const int64_t *ldy,
           const int64_t *nrnk, const real_of<T> *tol, int64_t *k, T *eigs, T *z, const int64_t *ldz,
           real_of<T> *res, T *b, const int64_t *ldb, T *w, const int64_t *ldw, T *s, const int64_t *lds,
           T *zwork, const int64_t *lzwork, real_of<T> *rwork, const int64_t *lrwork, int64_t *iwork,
           const int64_t *liwork, int64_t *info)
{
    *info = run_dmd<T>({*jobs, *jobz, *jobr,   *jobf, *whtsvd, *m,  *n, x,    *ldx, y,    *ldy, *nrnk,
                        *tol,  eigs,  nullptr, z,     *ldz,    res, b,  *ldb, w,    *ldw, s,    *lds},
                       *k, {zwork, *lzwork, rwork, *lrwork, iwork, *liwork});
}

} // namespace xkl::core
