// ?SYRDB and ?HERDB: A = Q*T*Q**H with a tridiagonal T. Callers name the width of a band to go through on the
// way, but ask for T and Q alone. With OpenBLAS at orders about 1000 one step takes no longer than two, and
// with vectors less than half the time: the rotations that clear a band go to Q one by one.
#pragma once

#include "batch.h"

#include "blas/parts.h"

#include <limits>

namespace xkl::core {

/// The reduction and the making of Q, with the names that they have for the type
template <class T>
struct tridiagonal_form {
    int64_t n;
    char uplo;
    T *a;
    int64_t lda;

    void reduce(real_of<T> *d, real_of<T> *e, T *tau, T *work, int64_t lwork, int64_t *info) const
    {
        if constexpr (element<T>::is_complex)
            call(entries::hetrd<T>, uplo, n, a, lda, d, e, tau, work, lwork, info);
        else
            call(entries::sytrd<T>, uplo, n, a, lda, d, e, tau, work, lwork, info);
    }
    /// Z := Z*Q
    void multiply(T *tau, T *z, int64_t ldz, T *work, int64_t lwork, int64_t *info) const
    {
        if constexpr (element<T>::is_complex)
            call(entries::unmtr<T>, 'R', uplo, 'N', n, n, a, lda, tau, z, ldz, work, lwork, info);
        else
            call(entries::ormtr<T>, 'R', uplo, 'N', n, n, a, lda, tau, z, ldz, work, lwork, info);
    }
    /// Z := Q, where the reflectors lie already
    void generate(T *tau, T *z, int64_t ldz, T *work, int64_t lwork, int64_t *info) const
    {
        if constexpr (element<T>::is_complex)
            call(entries::ungtr<T>, uplo, n, z, ldz, tau, work, lwork, info);
        else
            call(entries::orgtr<T>, uplo, n, z, ldz, tau, work, lwork, info);
    }
    int64_t best_workspace() const
    {
        T *const none = nullptr;
        const int64_t ld = std::max<int64_t>(n, 1);
        const auto asked = [](const auto &ask) { return core::best_workspace<T>(ask); };
        return std::max({asked([&](T *work, int64_t query, int64_t *info) {
                             reduce(nullptr, nullptr, none, work, query, info);
                         }),
                         asked([&](T *work, int64_t query, int64_t *info) {
                             multiply(none, none, ld, work, query, info);
                         }),
                         asked([&](T *work, int64_t query, int64_t *info) {
                             generate(none, none, ld, work, query, info);
                         })});
    }
};

/// What the frames' checks ask for, and no less than what is best
template <class T>
int64_t best_for_reduction(const tridiagonal_form<T> &form, int64_t kd)
{
    __extension__ using wide = __int128; // checks let queries pass with any kd
    constexpr int64_t largest = std::numeric_limits<int64_t>::max();
    if (form.n <= 1)
        return 1;
    const wide checked = (2 * static_cast<wide>(kd) + 1) * form.n + kd;
    return static_cast<int64_t>(std::clamp<wide>(checked, form.n - 1 + form.best_workspace(), largest));
}

/// The frames have checked the arguments. The reflectors' factors go to the front of the workspace: how many
/// of them the caller's tau has room for depends on the way, and nobody needs them afterwards.
template <class T>
void syrdb(const char *jobz, const char *uplo, const int64_t *n, const int64_t *kd, T *a,
           const int64_t *lda, real_of<T> *d, real_of<T> *e, T *, T *z, const int64_t *ldz, T *work,
           const int64_t *lwork, int64_t *info)
{
    const tridiagonal_form<T> form = {*n, *uplo, a, *lda};
    const T best = call(entries::roundup_lwork<real_of<T>>, best_for_reduction(form, *kd));
    *info = 0;
    if (*lwork != -1 && *n > 0) {
        T *const tau = work, *const rest = work + (*n - 1);
        const int64_t length = *lwork - (*n - 1);
        form.reduce(d, e, tau, rest, length, info);
        if (is(*jobz, 'V')) {
            copy(*n, *n, a, *lda, z, *ldz);
            form.generate(tau, z, *ldz, rest, length, info);
        } else if (is(*jobz, 'U')) {
            form.multiply(tau, z, *ldz, rest, length, info);
        }
    }
    work[0] = best;
}

template <class T>
constexpr auto herdb = syrdb<T>;

} // namespace xkl::core
