// The compact factorizations: from the caller's options to views and kernels.
#pragma once

#include "blas/compact_calls.h"
#include "compact_factor.h"
#include "requirements.h"

namespace xkl::core {

template <class T>
const compact_factorizations<real_of<T>> &factorizations(int32_t format)
{
    return of_type<T>(
        for_format(format, compact_factor_baseline, compact_factor_avx2, compact_factor_avx512));
}

inline bool is_layout(int32_t layout)
{
    return layout == CblasRowMajor || layout == CblasColMajor;
}

inline bool is_format(int32_t format)
{
    return format >= XKL_COMPACT_128 && format <= XKL_COMPACT_512;
}

/// Whether a leading dimension suffices for m by n matrices in a layout
inline bool is_ld(int64_t ld, int32_t layout, int64_t m, int64_t n)
{
    return ld >= least_ld(row_major(layout) ? n : m);
}

/// body(the first pack's view moved to each pack, that pack's number)
template <class T, class Body>
void for_each_pack(compact_view<real_of<T>> a, int32_t format, int64_t nm, double operations,
                   const Body &body)
{
    const double each = operations * static_cast<double>(lanes_of<T>(format) * parts_of<T> * parts_of<T>);
    for_each(packs_of<T>(format, nm), each, [&](int64_t pack) {
        compact_view<real_of<T>> moved = a;
        moved.first += pack * a.pack;
        body(moved, pack);
    });
}

template <class T>
void xkl_getrfnp_compact(int32_t layout, int64_t m, int64_t n, real_of<T> *a, int64_t lda, int64_t *info,
                         int32_t format, int64_t nm)
{
    if (!accepted<T>("XKL_?GETRFNP_COMPACT", info,
                     {{1, is_layout(layout)},
                      {2, m >= 0},
                      {3, n >= 0},
                      {5, is_ld(lda, layout, m, n)},
                      {7, is_format(format)},
                      {8, nm >= 0}}) ||
        m == 0 || n == 0 || nm == 0)
        return;
    const auto lu = factorizations<T>(format).lu;
    for_each_pack<T>(view<T>(layout, m, n, a, lda, format), format, nm,
                     operations(m, n, std::min(m, n)) / 2,
                     [&](const auto &matrix, int64_t) { lu(matrix, m, n); });
}

template <class T>
void xkl_potrf_compact(int32_t layout, int32_t uplo, int64_t n, real_of<T> *a, int64_t lda, int64_t *info,
                       int32_t format, int64_t nm)
{
    if (!accepted<T>("XKL_?POTRF_COMPACT", info,
                     {{1, is_layout(layout)},
                      {2, uplo == CblasUpper || uplo == CblasLower},
                      {3, n >= 0},
                      {5, lda >= least_ld(n)},
                      {7, is_format(format)},
                      {8, nm >= 0}}) ||
        n == 0 || nm == 0)
        return;
    // U**H*U = A is U**T times its conjugate = A**T, whose lower triangle is the upper one of A.
    auto lower = view<T>(layout, n, n, a, lda, format);
    if (uplo == CblasUpper)
        std::swap(lower.row, lower.column);
    const auto cholesky = factorizations<T>(format).cholesky;
    for_each_pack<T>(lower, format, nm, operations(n, n, n) / 6,
                     [&](const auto &matrix, int64_t) { cholesky(matrix, n); });
}

template <class T>
void xkl_geqrf_compact(int32_t layout, int64_t m, int64_t n, real_of<T> *a, int64_t lda, real_of<T> *tau,
                       real_of<T> *work, int64_t lwork, int64_t *info, int32_t format, int64_t nm)
{
    if (!accepted<T>("XKL_?GEQRF_COMPACT", info,
                     {{1, is_layout(layout)},
                      {2, m >= 0},
                      {3, n >= 0},
                      {5, is_ld(lda, layout, m, n)},
                      {8, lwork == -1 || lwork >= 1},
                      {10, is_format(format)},
                      {11, nm >= 0}}))
        return;
    work[0] = 1; // the reflectors are applied in place
    if (lwork == -1 || m == 0 || n == 0 || nm == 0)
        return;
    const auto qr = factorizations<T>(format).qr;
    const int64_t taus = std::min(m, n) * lanes_of<T>(format) * parts_of<T>;
    for_each_pack<T>(view<T>(layout, m, n, a, lda, format), format, nm, operations(m, n, std::min(m, n)),
                     [&](const auto &matrix, int64_t pack) { qr(matrix, m, n, tau + pack * taus); });
}

template <class T>
void xkl_getrinp_compact(int32_t layout, int64_t n, real_of<T> *a, int64_t lda, real_of<T> *work,
                         int64_t lwork, int64_t *info, int32_t format, int64_t nm)
{
    if (!accepted<T>("XKL_?GETRINP_COMPACT", info,
                     {{1, is_layout(layout)},
                      {2, n >= 0},
                      {4, lda >= least_ld(n)},
                      {6, lwork == -1 || lwork >= 1},
                      {8, is_format(format)},
                      {9, nm >= 0}}))
        return;
    work[0] = 1; // the inverse takes the factors' place piece by piece
    if (lwork == -1 || n == 0 || nm == 0)
        return;
    const auto inverse = factorizations<T>(format).inverse;
    for_each_pack<T>(view<T>(layout, n, n, a, lda, format), format, nm, operations(n, n, n),
                     [&](const auto &matrix, int64_t) { inverse(matrix, n); });
}

} // namespace xkl::core
