// QR factorization with column pivoting that stops at a rank or at a tolerance, which LAPACK has since
// version 3.12.
#pragma once

#include "arguments.h"
#include "truncated_qr_steps.h"

namespace xkl::core {

template <class T>
void laqp2rk(const int64_t *m, const int64_t *n, const int64_t *nrhs, const int64_t *ioffset,
             const int64_t *kmax, const real_of<T> *abstol, const real_of<T> *reltol, const int64_t *kp1,
             const real_of<T> *maxc2nrm, T *a, const int64_t *lda, int64_t *k, real_of<T> *maxc2nrmk,
             real_of<T> *relmaxc2nrmk, int64_t *jpiv, T *tau, real_of<T> *vn1, real_of<T> *vn2, T *work,
             int64_t *info)
{
    const pivoted_columns<T> q{*m, *n, *nrhs, *ioffset, a, *lda, jpiv, tau, vn1, vn2};
    residual_norm<real_of<T>> rest;
    *k = factor_columns(q, *kmax, *kp1 - 1, {*abstol, *reltol, *maxc2nrm}, work, rest, *info);
    *maxc2nrmk = rest.absolute;
    *relmaxc2nrmk = rest.relative;
}

template <class T>
void laqp3rk(const int64_t *m, const int64_t *n, const int64_t *nrhs, const int64_t *ioffset, int64_t *nb,
             const real_of<T> *abstol, const real_of<T> *reltol, const int64_t *kp1,
             const real_of<T> *maxc2nrm, T *a, const int64_t *lda, int64_t *done, int64_t *kb,
             real_of<T> *maxc2nrmk, real_of<T> *relmaxc2nrmk, int64_t *jpiv, T *tau, real_of<T> *vn1,
             real_of<T> *vn2, T *auxv, T *f, const int64_t *ldf, int64_t *iwork, int64_t *info)
{
    const pivoted_columns<T> q{*m, *n, *nrhs, *ioffset, a, *lda, jpiv, tau, vn1, vn2};
    residual_norm<real_of<T>> rest;
    bool ended;
    *kb = factor_block(q, *nb, *kp1 - 1, {*abstol, *reltol, *maxc2nrm}, {q, auxv, f, *ldf}, iwork, rest,
                       ended, *info);
    *done = ended;
    *maxc2nrmk = rest.absolute;
    *relmaxc2nrmk = rest.relative;
}

/// What ?GEQP3RK works on, in all types.
template <class T>
struct truncated_qr {
    const pivoted_columns<T> whole;
    int64_t kmax;
    truncation<real_of<T>> until;
    T *work; // aux and F
    int64_t work_size;
    int64_t *iwork;
    residual_norm<real_of<T>> rest;
    int64_t info;

    int64_t block_words() const { return whole.n + whole.nrhs + 1; }
    int64_t factor();

  private:
    pivoted_columns<T> from(int64_t k) const
    {
        const auto &q = whole;
        return {q.m,   q.n - k,    q.nrhs,    q.offset + k, q.at(0, k),
                q.lda, q.jpiv + k, q.tau + k, q.norms + k,  q.exact_norms + k};
    }
    /// Makes what a step on the columns from k on has found into what the whole call has found.
    void take_over(int64_t found, int64_t k)
    {
        const int64_t columns = whole.n - k;
        if (found > 0 && found <= columns)
            info = k + found;
        else if (found > 0 && info == 0)
            info = whole.n + k + found - columns;
    }
    bool in_blocks(int64_t nb, int64_t last, int64_t first_pivot, int64_t &k);
};

/// Blocks up to column `last`; true when that is the end of the whole factorization.
template <class T>
bool truncated_qr<T>::in_blocks(int64_t nb, int64_t last, int64_t first_pivot, int64_t &k)
{
    while (k < last) {
        const auto q = from(k);
        int64_t found;
        bool done;
        const int64_t width = std::min(nb, last - k);
        const int64_t factored = factor_block(
            q, width, first_pivot, until, {q, work, work + width, q.n + q.nrhs}, iwork, rest, done, found);
        take_over(found, k);
        k += factored;
        if (done)
            return true;
    }
    return false;
}

/// Returns the rank. Nothing has been factored yet, and at least one column is to be.
template <class T>
int64_t truncated_qr<T>::factor()
{
    const int64_t possible = whole.possible(), first_pivot = find_pivot(whole.norms, 0, whole.n);
    const int64_t last = std::min(kmax, possible), fitting = work_size / block_words();
    const int64_t nb = std::min(tuning<T>(1, "GEQRF", whole.m, whole.n), fitting);
    const int64_t crossover = std::max<int64_t>(0, tuning<T>(3, "GEQRF", whole.m, whole.n));
    const int64_t smallest = std::max<int64_t>(2, tuning<T>(2, "GEQRF", whole.m, whole.n));
    int64_t k = 0;
    if (nb >= smallest && nb < last && crossover < possible &&
        in_blocks(nb, std::min(last, possible - crossover), first_pivot, k))
        return k;
    if (k == last) {
        rest = what_remains(whole.norms, k, whole.n, possible, until, info);
        return k;
    }
    int64_t found;
    const int64_t factored = factor_columns(from(k), last - k, first_pivot, until, work, rest, found);
    take_over(found, k);
    return k + factored;
}

/// The parts of ?GEQP3RK's answer.
template <class T>
struct truncated_qr_result {
    int64_t *k;
    real_of<T> *maxc2nrmk, *relmaxc2nrmk;
};

/// The factorization with the cases in which nothing is to be done. The arguments have been checked.
template <class T>
int64_t factor_truncated(truncated_qr<T> qr, const truncated_qr_result<T> &result)
{
    using real = real_of<T>;
    const pivoted_columns<T> &q = qr.whole;
    auto answer = [&](int64_t k, real absolute, real relative) {
        *result.k = k;
        *result.maxc2nrmk = absolute;
        *result.relmaxc2nrmk = relative;
        return qr.info;
    };
    for (int64_t j = 0; j < q.n; ++j)
        q.jpiv[j] = j + 1;
    qr.info = 0;
    if (q.possible() == 0)
        return answer(0, 0, 0);
    for (int64_t j = 0; j < q.n; ++j)
        q.measure(j, 0);
    const int64_t first = find_pivot(q.norms, 0, q.n);
    const real largest = qr.until.largest = q.norms[first];
    if (std::isnan(largest)) {
        qr.info = first + 1;
        return answer(0, largest, largest);
    }
    q.no_reflectors_from(0);
    if (largest == 0)
        return answer(0, 0, 0);
    if (std::isinf(largest))
        qr.info = q.n + first + 1;
    using limits = std::numeric_limits<real>;
    if (qr.until.abstol >= 0)
        qr.until.abstol = std::max(qr.until.abstol, 2 * limits::min());
    if (qr.until.reltol >= 0)
        qr.until.reltol = std::max(qr.until.reltol, limits::epsilon() / 2);
    if (qr.kmax == 0 || qr.until.abstol >= largest || qr.until.reltol >= 1)
        return answer(0, largest, 1);
    const int64_t k = qr.factor();
    return answer(k, qr.rest.absolute, qr.rest.relative);
}

/// Checks, and the answer about workspace: real types keep the norms in it, so `norms` is 2*n there.
template <class T>
int64_t refuse_truncated_qr(int64_t m, int64_t n, int64_t nrhs, int64_t kmax, real_of<T> abstol,
                            real_of<T> reltol, int64_t lda, T *work, int64_t lwork, int64_t norms)
{
    const bool empty = m <= 0 || n <= 0;
    const int64_t least = empty ? 1 : norms + n + nrhs - 1;
    const int64_t info = refuse<T>("?GEQP3RK", {{m < 0, 1},
                                                {n < 0, 2},
                                                {nrhs < 0, 3},
                                                {kmax < 0, 4},
                                                {std::isnan(abstol), 5},
                                                {std::isnan(reltol), 6},
                                                {lda < std::max<int64_t>(1, m), 8},
                                                {lwork < least && lwork != -1, 15}});
    if (info == 0) {
        const int64_t block = empty ? 1 : tuning<T>(1, "GEQRF", m, n);
        work[0] = work_size<T>(empty ? 1 : std::max(least, norms + block * (n + nrhs + 1)));
    }
    return info;
}

template <class T>
void geqp3rk(const int64_t *m, const int64_t *n, const int64_t *nrhs, const int64_t *kmax, T *abstol,
             T *reltol, T *a, const int64_t *lda, int64_t *k, T *maxc2nrmk, T *relmaxc2nrmk, int64_t *jpiv,
             T *tau, T *work, const int64_t *lwork, int64_t *iwork, int64_t *info)
{
    const int64_t norms = 2 * *n;
    *info = refuse_truncated_qr<T>(*m, *n, *nrhs, *kmax, *abstol, *reltol, *lda, work, *lwork, norms);
    if (*info != 0 || *lwork == -1)
        return;
    const T best = work[0];
    *info = factor_truncated<T>({{*m, *n, *nrhs, 0, a, *lda, jpiv, tau, work, work + *n},
                                 *kmax,
                                 {*abstol, *reltol, 0},
                                 work + norms,
                                 *lwork - norms,
                                 iwork,
                                 {},
                                 0},
                                {k, maxc2nrmk, relmaxc2nrmk});
    work[0] = best;
}

template <class T>
void geqp3rk(const int64_t *m, const int64_t *n, const int64_t *nrhs, const int64_t *kmax,
             real_of<T> *abstol, real_of<T> *reltol, T *a, const int64_t *lda, int64_t *k,
             real_of<T> *maxc2nrmk, real_of<T> *relmaxc2nrmk, int64_t *jpiv, T *tau, T *work,
             const int64_t *lwork, real_of<T> *rwork, int64_t *iwork, int64_t *info)
{
    *info = refuse_truncated_qr<T>(*m, *n, *nrhs, *kmax, *abstol, *reltol, *lda, work, *lwork, 0);
    if (*info != 0 || *lwork == -1)
        return;
    const T best = work[0];
    *info = factor_truncated<T>({{*m, *n, *nrhs, 0, a, *lda, jpiv, tau, rwork, rwork + *n},
                                 *kmax,
                                 {*abstol, *reltol, 0},
                                 work,
                                 *lwork,
                                 iwork,
                                 {},
                                 0},
                                {k, maxc2nrmk, relmaxc2nrmk});
    work[0] = best;
}

} // namespace xkl::core
