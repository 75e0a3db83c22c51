// Truncated singular value decompositions of tall matrices. A = Q*R, and the small R is decomposed: as
// accurate as the decomposition of A itself, for hardly more work than the eigenvalues of A**H*A, in which
// singular values below the root of the precision are lost.
#pragma once

#include "batch.h"

#include "blas/parts.h"

namespace xkl::core {

/// What the matrices of a batch have in common, and what is done with each
template <class T>
struct truncated_svd {
    using real = real_of<T>;

    bool rank_given, residual_wanted;
    int64_t m, n, lda, ldu, ldvt;
    real tolerance;

    /// The workspace of a matrix, in its order: R and then its left vectors, V**H, its singular values and
    /// what ?GESVD asks for in reals, the reflectors' factors, a copy of A, and the rest for LAPACK.
    int64_t reals() const { return element<T>::is_complex ? 3 * n : n; }
    int64_t kept() const { return 2 * n * n + reals() + n + (residual_wanted ? m * n : 0); }
    int64_t least_workspace() const { return kept() + std::max<int64_t>(5 * n, 1); }
    int64_t best_workspace() const
    {
        const auto asked = [](const auto &ask) { return core::best_workspace<T>(ask); };
        T *const none = nullptr;
        const int64_t factors = asked(
            [=, this](T *work, int64_t lwork, int64_t *info) { factor(none, none, work, lwork, info); });
        const int64_t values = asked([=, this](T *work, int64_t lwork, int64_t *info) {
            decompose(none, nullptr, none, work, lwork, info);
        });
        const int64_t vectors = asked([=, this](T *work, int64_t lwork, int64_t *info) {
            multiply_by_q(n, none, none, none, work, lwork, info);
        });
        return std::max(least_workspace(), kept() + std::max({factors, values, vectors}));
    }

    void factor(T *a, T *tau, T *work, int64_t lwork, int64_t *info) const
    {
        call(entries::geqrf<T>, m, n, a, lda, tau, work, lwork, info);
    }

    /// R = U*S*V**H, with U in the place of R
    void decompose(T *r, real *values, T *vt, T *work, int64_t lwork, int64_t *info) const
    {
        const int64_t ld = std::max<int64_t>(n, 1);
        if constexpr (element<T>::is_complex)
            call(entries::gesvd<T>, 'O', 'S', n, n, r, ld, values, r, ld, vt, ld, work, lwork, values + n,
                 info);
        else
            call(entries::gesvd<T>, 'O', 'S', n, n, r, ld, values, r, ld, vt, ld, work, lwork, info);
    }

    void multiply_by_q(int64_t rank, T *a, T *tau, T *u, T *work, int64_t lwork, int64_t *info) const
    {
        if constexpr (element<T>::is_complex)
            call(entries::unmqr<T>, 'L', 'N', m, rank, n, a, lda, tau, u, ldu, work, lwork, info);
        else
            call(entries::ormqr<T>, 'L', 'N', m, rank, n, a, lda, tau, u, ldu, work, lwork, info);
    }

    int64_t rank_found(const real *values) const
    {
        return std::count_if(values, values + n,
                             [=, this](real each) { return each > tolerance * values[0]; });
    }

    /// norm(A - U*S*V**H) over norm(A), of Frobenius, from a copy of A, which is overwritten, as is `scaled`
    real residual_norm(int64_t rank, const real *values, const T *u, const T *vt, T *copy, T *scaled) const
    {
        for (int64_t j = 0; j < rank; ++j)
            std::transform(u + j * ldu, u + j * ldu + m, scaled + j * lda,
                           [=](T each) { return each * values[j]; });
        call(entries::gemm<T>, 'N', 'N', m, n, rank, T(-1), scaled, lda, vt, ldvt, T(1), copy, m);
        const real whole = call(entries::nrm2<real>, n, values, int64_t{1});
        return whole == 0 ? 0 : call(entries::lange<T>, 'F', m, n, copy, m, nullptr) / whole;
    }

    /// One matrix. Where its values can't be found (info above 0) no result is written.
    void operator()(int64_t *rank, T *a, real *s, T *u, T *vt, real *residual, T *work, int64_t lwork,
                    int64_t *info) const
    {
        T *const r = work, *const all_vt = r + n * n, *const reals_at = all_vt + n * n;
        real *const values = reinterpret_cast<real *>(reals_at);
        T *const tau = reals_at + reals(), *const copy_of_a = tau + n, *const rest = work + kept();
        const int64_t length = lwork - kept();
        if (residual_wanted)
            copy(m, n, a, lda, copy_of_a, m);
        factor(a, tau, rest, length, info);
        for (int64_t j = 0; j < n; ++j) {
            std::copy_n(a + j * lda, j + 1, r + j * n);
            std::fill_n(r + j * n + j + 1, n - j - 1, T(0));
        }
        decompose(r, values, all_vt, rest, length, info);
        if (*info != 0)
            return;

        if (!rank_given)
            *rank = rank_found(values);
        std::copy_n(values, *rank, s);
        copy(*rank, n, all_vt, n, vt, ldvt);
        for (int64_t j = 0; j < *rank; ++j) {
            std::copy_n(r + j * n, n, u + j * ldu);
            std::fill_n(u + j * ldu + n, m - n, T(0));
        }
        multiply_by_q(*rank, a, tau, u, rest, length, info);
        if (residual_wanted)
            *residual = residual_norm(*rank, values, u, vt, copy_of_a, a);
    }
};

template <class T>
truncated_svd<T> make_truncated_svd(const int64_t *iparm, int64_t m, int64_t n, int64_t lda, int64_t ldu,
                                    int64_t ldvt, real_of<T> tolerance)
{
    return {iparm[0] == 1, iparm[1] != 0, m, n, lda, ldu, ldvt, tolerance};
}

/// How many columns the arrays of singular vectors must have room for
inline int64_t vectors_wanted(const int64_t *iparm, int64_t n, const int64_t *irank, int64_t count)
{
    return iparm[0] == 1 && count > 0 ? *std::max_element(irank, irank + count) : n;
}

/// Given ranks may not be above n.
inline bool ranks_fit(const int64_t *iparm, int64_t n, const int64_t *irank, int64_t count)
{
    return iparm[0] != 1 || every(count, [=](int64_t i) { return irank[i] >= 0 && irank[i] <= n; });
}

inline bool is_rank_choice(const int64_t *iparm)
{
    return iparm[0] == 0 || iparm[0] == 1;
}

template <class T>
void gesvda_batch_getsizes(const int64_t *iparm, const int64_t *m, const int64_t *n,
                           const int64_t *batch_size, int64_t *lwork, int64_t *info)
{
    if (refused<T>(
            "?GESVDA_BATCH_GETSIZES ",
            {{1, is_rank_choice(iparm)}, {2, *m >= 0}, {3, *n >= 0 && *n <= *m}, {4, *batch_size >= 0}},
            info))
        return;
    const int64_t ld = std::max<int64_t>(*m, 1);
    *info = 0;
    *lwork = make_truncated_svd<T>(iparm, *m, *n, ld, ld, ld, 0).best_workspace() *
             std::max<int64_t>(wanted_ranges(*batch_size), 1);
}

/// In an element, rounded up where it has too few digits
template <class T>
void tell_best(int64_t best, T *work)
{
    *work = call(entries::roundup_lwork<real_of<T>>, best);
}

/// The tests of lwork and its query, at its place in the list; true when nothing is left to do.
template <class T>
bool workspace_settled(const char *routine, int64_t place, const truncated_svd<T> &svd, int64_t best,
                       int64_t lwork, T *work, int64_t *info)
{
    constexpr int64_t query = -1;
    if (refused<T>(routine, {{place, lwork == query || lwork >= svd.least_workspace()}}, info))
        return true;
    if (lwork != query)
        return false;
    tell_best(best, work);
    *info = 0;
    return true;
}

template <class T>
void gesvda_batch_strided(const int64_t *iparm, int64_t *irank, const int64_t *m, const int64_t *n, T *a,
                          const int64_t *lda, const int64_t *stridea, real_of<T> *s, const int64_t *strides,
                          T *u, const int64_t *ldu, const int64_t *strideu, T *vt, const int64_t *ldvt,
                          const int64_t *stridevt, const real_of<T> *tolerance, real_of<T> *residual,
                          T *work, const int64_t *lwork, const int64_t *batch_size, int64_t *info)
{
    constexpr const char *name = "?GESVDA_BATCH_STRIDED ";
    const int64_t vectors = vectors_wanted(iparm, *n, irank, *batch_size);
    if (refused<T>(name,
                   {{1, is_rank_choice(iparm)},
                    {2, ranks_fit(iparm, *n, irank, *batch_size)},
                    {3, *m >= 0},
                    {4, *n >= 0 && *n <= *m},
                    {6, holds(*lda, *m)},
                    {7, apart(*stridea, *lda, *n)},
                    {9, apart(*strides, vectors, 1)},
                    {11, holds(*ldu, *m)},
                    {12, apart(*strideu, *ldu, vectors)},
                    {14, holds(*ldvt, vectors)},
                    {15, apart(*stridevt, *ldvt, *n)},
                    {16, iparm[0] == 1 || *tolerance >= 0},
                    {20, *batch_size >= 0}},
                   info))
        return;

    const auto svd = make_truncated_svd<T>(iparm, *m, *n, *lda, *ldu, *ldvt, *tolerance);
    const int64_t best = svd.best_workspace(), wanted = std::max<int64_t>(wanted_ranges(*batch_size), 1);
    if (workspace_settled(name, 19, svd, best * wanted, *lwork, work, info))
        return;
    const int64_t ranges = std::clamp<int64_t>(*lwork / best, 1, wanted), length = *lwork / ranges;
    for_each_in_spaces(
        work, ranges, length, *batch_size, 4 * operations(*m, *n, *n), [=](int64_t i, T *space) {
            svd(irank + i, a + i * *stridea, s + i * *strides, u + i * *strideu, vt + i * *stridevt,
                svd.residual_wanted ? residual + i : nullptr, space, length, info + i);
        });
    tell_best(best * wanted, work);
}

template <class T>
void gesvda_batch_kernel(const int64_t *iparm, int64_t *irank, const int64_t *m, const int64_t *n, T *a,
                         const int64_t *lda, real_of<T> *s, T *u, const int64_t *ldu, T *vt,
                         const int64_t *ldvt, const real_of<T> *tolerance, real_of<T> *residual, T *work,
                         const int64_t *lwork, int64_t *info)
{
    constexpr const char *name = "?GESVDA_BATCH_KERNEL ";
    if (refused<T>(name,
                   {{1, is_rank_choice(iparm)},
                    {2, ranks_fit(iparm, *n, irank, 1)},
                    {3, *m >= 0},
                    {4, *n >= 0 && *n <= *m},
                    {6, holds(*lda, *m)},
                    {9, holds(*ldu, *m)},
                    {11, holds(*ldvt, vectors_wanted(iparm, *n, irank, 1))},
                    {12, iparm[0] == 1 || *tolerance >= 0}},
                   info))
        return;
    const auto svd = make_truncated_svd<T>(iparm, *m, *n, *lda, *ldu, *ldvt, *tolerance);
    const int64_t best = svd.best_workspace();
    if (workspace_settled(name, 15, svd, best, *lwork, work, info))
        return;
    svd(irank, a, s, u, vt, residual, work, *lwork, info);
    tell_best(best, work);
}

} // namespace xkl::core
