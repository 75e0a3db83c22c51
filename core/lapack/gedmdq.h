// ?GEDMDQ: the dynamic mode decomposition of a single trajectory, compressed by a QR factorization of its
// snapshots: what then is decomposed has as many rows as there are snapshots.
#pragma once

#include "gedmd.h"

namespace xkl::core {

template <class T>
struct trajectory {
    char vectors, q, r; // options of ?GEDMDQ that ?GEDMD hasn't or takes otherwise
    int64_t m, n;
    T *f;
    int64_t ldf;

    int64_t rows() const { return std::min(m, n); }
    bool empty() const { return m == 0 || n <= 1; }
    bool lifts() const { return is_one_of(vectors, "VF"); }
};

/// The sizes are the trajectory's, and not yet those of the compressed problem.
template <class T>
int64_t refuse_trajectory(const trajectory<T> &t, const dmd_problem<T> &p)
{
    constexpr int64_t c = element<T>::is_complex;
    const int64_t rows = t.rows();
    return refuse<T>("?GEDMDQ",
                     {{!is_one_of(p.scaling, "SCYN"), 1},
                      {!is_one_of(t.vectors, "VFQN"), 2},
                      {!is_one_of(p.residuals, "RN") || (is(p.residuals, 'R') && is(t.vectors, 'N')), 3},
                      {!is_one_of(t.q, "QN"), 4},
                      {!is_one_of(t.r, "RN"), 5},
                      {!is_one_of(p.extra, "REN"), 6},
                      {p.method < qr_svd || p.method > jacobi_svd, 7},
                      {t.m < 0, 8},
                      {t.n < 0 || t.n > t.m + 1, 9},
                      {t.ldf < t.m, 11},
                      {p.ldx < rows, 13},
                      {p.ldy < rows, 15},
                      {p.wanted_rank < -2 || p.wanted_rank == 0 || p.wanted_rank > t.n, 16},
                      {!(p.tolerance >= 0 && p.tolerance < 1), 17},
                      {p.ldz < t.m, 22 - c},
                      {!is(p.extra, 'N') && p.ldb < rows, 25 - c},
                      {p.ldw < t.n - 1, 27 - c},
                      {p.lds < t.n - 1, 29 - c}});
}

template <class T>
int64_t factor_trajectory(const trajectory<T> &t, T *tau, T *work, int64_t size)
{
    int64_t info;
    call(entries::geqrf<T>, t.m, t.n, t.f, t.ldf, tau, work, size, &info);
    return info;
}

/// Z := Q*Z, k columns.
template <class T>
void multiply_by_q(const trajectory<T> &t, int64_t k, T *tau, T *z, int64_t ldz, T *work, int64_t size)
{
    int64_t info;
    if constexpr (element<T>::is_complex)
        call(entries::unmqr<T>, 'L', 'N', t.m, k, t.rows(), t.f, t.ldf, tau, z, ldz, work, size, &info);
    else
        call(entries::ormqr<T>, 'L', 'N', t.m, k, t.rows(), t.f, t.ldf, tau, z, ldz, work, size, &info);
}

template <class T>
void form_q(const trajectory<T> &t, T *tau, T *work, int64_t size)
{
    int64_t info;
    if constexpr (element<T>::is_complex)
        call(entries::ungqr<T>, t.m, t.rows(), t.rows(), t.f, t.ldf, tau, work, size, &info);
    else
        call(entries::orgqr<T>, t.m, t.rows(), t.rows(), t.f, t.ldf, tau, work, size, &info);
}

/// How much of the workspace is not free behind the decomposition: tau, and in real types singular values.
template <class T>
int64_t kept_words(const trajectory<T> &t)
{
    return t.rows() + (element<T>::is_complex ? 0 : t.n - 1);
}

template <class T>
workspace_sizes sizes_of(const trajectory<T> &t, const dmd_problem<T> &p)
{
    const int64_t tau = t.rows(), kept = kept_words(t);
    workspace_sizes sizes = sizes_of(p);
    auto need = [&](int64_t in_front, int64_t least, T best) {
        sizes.least = std::max(sizes.least, in_front + least);
        sizes.best = std::max({sizes.best, sizes.least, in_front + size_in(best)});
    };
    sizes.least += tau;
    sizes.best += tau;
    T answer{};
    factor_trajectory(t, &answer, &answer, -1);
    need(tau, t.n, answer);
    if (t.lifts()) {
        multiply_by_q(t, t.n - 1, &answer, &answer, t.m, &answer, -1);
        need(kept, t.n, answer);
    }
    if (is(t.q, 'Q')) {
        form_q(t, &answer, &answer, -1);
        need(kept, t.n, answer);
    }
    return sizes;
}

/// Elements on and above the given subdiagonal, and zeros below.
template <class T>
void copy_upper(int64_t m, int64_t n, int64_t subdiagonal, const T *a, int64_t lda, T *b, int64_t ldb)
{
    for (int64_t j = 0; j < n; ++j) {
        const int64_t count = std::min(m, j + subdiagonal + 1);
        std::copy(a + j * lda, a + j * lda + count, b + j * ldb);
        std::fill(b + j * ldb + count, b + j * ldb + m, T(0));
    }
}

/// The decomposition and what the caller wants of it in the space of the trajectory.
template <class T>
dmd_outcome decompose_trajectory(const trajectory<T> &t, const dmd_problem<T> &p, int64_t &k,
                                 const workspaces<T> &space)
{
    T *tau = space.work;
    workspaces<T> behind = space;
    behind.work += t.rows();
    behind.size -= t.rows();
    factor_trajectory(t, tau, behind.work, behind.size);
    copy_upper(p.m, p.n, 0, t.f, t.ldf, p.x, p.ldx);
    copy_upper(p.m, p.n, 1, t.f + t.ldf, t.ldf, p.y, p.ldy);
    const dmd_outcome outcome = decompose_in(p, k, behind);
    if (outcome != dmd_outcome::fine && outcome != dmd_outcome::inconsistent)
        return outcome;

    T *work = space.work + kept_words(t);
    const int64_t size = space.size - kept_words(t);
    if (is(t.vectors, 'F'))
        call(entries::lacpy<T>, 'A', p.m, k, p.x, p.ldx, p.z, p.ldz);
    if (t.lifts()) {
        for (int64_t j = 0; j < k; ++j)
            std::fill(p.z + j * p.ldz + p.m, p.z + j * p.ldz + t.m, T(0));
        multiply_by_q(t, k, tau, p.z, p.ldz, work, size);
    }
    if (is(t.r, 'R'))
        copy_upper(p.m, t.n, 0, t.f, t.ldf, p.y, p.ldy);
    if (is(t.q, 'Q'))
        form_q(t, tau, work, size);
    return outcome;
}

template <class T>
int64_t run_dmdq(const trajectory<T> &t, dmd_problem<T> p, int64_t &k, const workspaces<T> &space)
{
    if (const int64_t info = refuse_trajectory(t, p); info != 0)
        return info;
    p.m = t.rows();
    p.n = t.n - 1;
    p.wanted_rank = std::min(p.wanted_rank, p.n);
    const bool query = is_query(space);
    const workspace_sizes sizes = t.empty() ? sizes_of_nothing : sizes_of(t, p);
    if (query)
        tell_sizes(sizes, space);
    else if (t.empty())
        k = 0;
    if (query || t.empty())
        return t.empty() ? nothing_to_do : 0;
    if (const int64_t info = refuse_workspaces("?GEDMDQ", sizes, space, element<T>::is_complex ? 29 : 30))
        return info;
    constexpr int64_t snapshots = 10; // argument F, be it the part in X or the one in Y
    return info_of<T>(decompose_trajectory(t, p, k, space), "?GEDMDQ", snapshots, snapshots);
}

/// Factored modes are the caller's to multiply, but residuals need the eigenvectors all the same.
inline char inner_vectors(char vectors, char residuals)
{
    return is(vectors, 'Q') || is(residuals, 'R') ? 'V' : vectors;
}

template <class T>
void gedmdq(const char *jobs, const char *jobz, const char *jobr, const char *jobq, const char *jobt,
            const char *jobf, const int64_t *whtsvd, const int64_t *m, const int64_t *n, T *f,
            const int64_t *ldf, T *x, const int64_t *ldx, T *y, const int64_t *ldy, const int64_t *nrnk,
            const T *tol, int64_t *k, T *reig, T *imeig, T *z, const int64_t *ldz, T *res, T *b,
            const int64_t *ldb, T *v, const int64_t *ldv, T *s, const int64_t *lds, T *work,
            const int64_t *lwork, int64_t *iwork, const int64_t *liwork, int64_t *info)
{
    *info = run_dmdq<T>({*jobz, *jobq, *jobt, *m, *n, f, *ldf}, {*jobs,   inner_vectors(*jobz, *jobr),
                                                                 *jobr,   *jobf,
                                                                 *whtsvd, 0,
                                                                 0,       x,
                                                                 *ldx,    y,
                                                                 *ldy,    *nrnk,
                                                                 *tol,    reig,
                                                                 imeig,   z,
                                                                 *ldz,    res,
                                                                 b,       *ldb,
                                                                 v,       *ldv,
                                                                 s,       *lds},
                        *k, {work, *lwork, nullptr, 0, iwork, *liwork});
}

template <class T>
void gedmdq(const char *jobs, const char *jobz, const char *jobr, const char *jobq, const char *jobt,
            const char *jobf, const int64_t *whtsvd, const int64_t *m, const int64_t *n, T *f,
            const int64_t *ldf, T *x, const int64_t *ldx, T *y, const int64_t *ldy, const int64_t *nrnk,
            const real_of<T> *tol, int64_t *k, T *eigs, T *z, const int64_t *ldz, real_of<T> *res, T *b,
            const int64_t *ldb, T *v, const int64_t *ldv, T *s, const int64_t *lds, T *zwork,
            const int64_t *lzwork, real_of<T> *work, const int64_t *lwork, int64_t *iwork,
            const int64_t *liwork, int64_t *info)
{
    *info = run_dmdq<T>({*jobz, *jobq, *jobt, *m, *n, f, *ldf}, {*jobs,   inner_vectors(*jobz, *jobr),
                                                                 *jobr,   *jobf,
                                                                 *whtsvd, 0,
                                                                 0,       x,
                                                                 *ldx,    y,
                                                                 *ldy,    *nrnk,
                                                                 *tol,    eigs,
                                                                 nullptr, z,
                                                                 *ldz,    res,
                                                                 b,       *ldb,
                                                                 v,       *ldv,
                                                                 s,       *lds},
                        *k, {zwork, *lzwork, work, *lwork, iwork, *liwork});
}

} // namespace xkl::core
