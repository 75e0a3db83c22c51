// The compact routines: from the caller's options to views and kernels. Packing leaves no lane empty: where
// there are no more matrices it repeats the last one, so that no solve divides by a padding's zero.
#pragma once

#include "compact.h"
#include "parallel.h"
#include "report.h"
#include "service/reproducibility.h"

#include <algorithm>
#include <type_traits>

namespace xkl::core {

inline bool row_major(int32_t layout)
{
    return layout == CblasRowMajor;
}

/// Matrices of type T that a pack has in a format
template <class T>
int64_t lanes_of(int32_t format)
{
    return xkl_compact_lanes(format, sizeof(real_of<T>));
}

template <class T>
constexpr int64_t parts_of = element<T>::is_complex ? 2 : 1;

template <class T>
int64_t packs_of(int32_t format, int64_t nm)
{
    return (nm - 1) / lanes_of<T>(format) + 1;
}

/// The first position, counted from 1, whose option is outside its two or three values; 0 when there is
/// none.
struct option {
    int64_t position;
    int32_t value, first, last;
};
inline int64_t wrong_option(std::initializer_list<option> options)
{
    for (const option &each : options)
        if (each.value < each.first || each.value > each.last)
            return each.position;
    return 0;
}

inline option layout_option(int64_t position, int32_t value)
{
    return {position, value, CblasRowMajor, CblasColMajor};
}
inline option trans_option(int64_t position, int32_t value)
{
    return {position, value, CblasNoTrans, CblasConjTrans};
}
inline option format_option(int64_t position, int32_t value)
{
    return {position, value, XKL_COMPACT_128, XKL_COMPACT_512};
}

/// rows by columns elements as stored, with the distances that layout and format give
template <class T, class R>
compact_view<R> view(int32_t layout, int64_t rows, int64_t columns, R *first, int64_t ld, int32_t format)
{
    const int64_t unit = lanes_of<T>(format) * parts_of<T>;
    if (row_major(layout))
        return {first, ld * unit, unit, ld * rows * unit};
    return {first, unit, ld * unit, ld * columns * unit};
}

template <class R>
compact_view<R> apply(int32_t trans, compact_view<R> a)
{
    if (trans != CblasNoTrans)
        std::swap(a.row, a.column);
    a.conjugated = trans == CblasConjTrans;
    return a;
}

/// The kernels for a format on this processor, of those for 128, 256 and 512 bits that run on any and those
/// for processors that have such registers
template <class Kernels>
const Kernels &for_format(int32_t format, const Kernels (&baseline)[3], const Kernels &avx2,
                          const Kernels &avx512)
{
    const instruction_level level = level_in_force();
    if (format == XKL_COMPACT_256 && level >= instruction_level::avx2)
        return avx2;
    if (format == XKL_COMPACT_512 && level >= instruction_level::avx512)
        return avx512;
    return baseline[format - XKL_COMPACT_128];
}

template <class T, class Kernels>
const auto &of_type(const Kernels &kernels)
{
    if constexpr (std::is_same_v<real_of<T>, float>)
        return element<T>::is_complex ? kernels.c : kernels.s;
    else
        return element<T>::is_complex ? kernels.z : kernels.d;
}

template <class T>
const compact_routines<real_of<T>> &routines(int32_t format)
{
    return of_type<T>(for_format(format, compact_baseline, compact_avx2, compact_avx512));
}

template <class T>
void multiply(int32_t layout, int32_t transa, int32_t transb, int64_t m, int64_t n, int64_t k, T alpha,
              const real_of<T> *a, int64_t lda, const real_of<T> *b, int64_t ldb, T beta, real_of<T> *c,
              int64_t ldc, int32_t format, int64_t nm)
{
    if (const int64_t wrong = wrong_option({layout_option(1, layout), trans_option(2, transa),
                                            trans_option(3, transb), format_option(15, format)}))
        return report("XKL_?GEMM_COMPACT ", letter_of<T>, wrong);
    if (m <= 0 || n <= 0 || nm <= 0)
        return;
    if (alpha == T(0))
        k = 0;
    const bool plain_a = transa == CblasNoTrans, plain_b = transb == CblasNoTrans;
    const compact_product<real_of<T>> task = {
        m,
        n,
        k,
        {std::real(alpha), std::imag(alpha)},
        {std::real(beta), std::imag(beta)},
        apply(transa, view<T>(layout, plain_a ? m : k, plain_a ? k : m, a, lda, format)),
        apply(transb, view<T>(layout, plain_b ? k : n, plain_b ? n : k, b, ldb, format)),
        view<T>(layout, m, n, c, ldc, format)};
    const double operations = 1. * m * n * std::max<int64_t>(k, 1) * parts_of<T> * parts_of<T>;
    const auto product = routines<T>(format).product;
    for_each(packs_of<T>(format, nm), operations * lanes_of<T>(format),
             [&](int64_t pack) { product(task, pack); });
}

template <class R>
void reverse(compact_view<R> &a, int64_t rows, int64_t columns)
{
    if (rows > 0)
        a.first += (rows - 1) * a.row, a.row = -a.row;
    if (columns > 0)
        a.first += (columns - 1) * a.column, a.column = -a.column;
}

template <class T>
void clear(const compact_view<real_of<T>> &b, int64_t m, int64_t n, int64_t pack, int64_t unit)
{
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < m; ++i)
            std::fill_n(b.first + pack * b.pack + i * b.row + j * b.column, unit, real_of<T>(0));
}

template <class T>
void solve(int32_t layout, int32_t side, int32_t uplo, int32_t transa, int32_t diag, int64_t m, int64_t n,
           T alpha, const real_of<T> *a, int64_t lda, real_of<T> *b, int64_t ldb, int32_t format,
           int64_t nm)
{
    if (const int64_t wrong = wrong_option({layout_option(1, layout),
                                            {2, side, CblasLeft, CblasRight},
                                            {3, uplo, CblasUpper, CblasLower},
                                            trans_option(4, transa),
                                            {5, diag, CblasNonUnit, CblasUnit},
                                            format_option(13, format)}))
        return report("XKL_?TRSM_COMPACT ", letter_of<T>, wrong);
    if (m <= 0 || n <= 0 || nm <= 0)
        return;
    const int64_t order = side == CblasLeft ? m : n;
    compact_solution<real_of<T>> task = {m,
                                         n,
                                         {std::real(alpha), std::imag(alpha)},
                                         diag == CblasUnit,
                                         apply(transa, view<T>(layout, order, order, a, lda, format)),
                                         view<T>(layout, m, n, b, ldb, format)};
    // X*op(A) = B is op(A)'*X' = B', and an upper triangle read backwards is a lower one.
    bool lower = (uplo == CblasLower) == (transa == CblasNoTrans);
    if (side == CblasRight) {
        std::swap(task.a.row, task.a.column);
        std::swap(task.b.row, task.b.column);
        std::swap(task.m, task.n);
        lower = !lower;
    }
    if (!lower) {
        reverse(task.a, order, order);
        reverse(task.b, order, 0);
    }
    const double operations = .5 * order * m * n * parts_of<T> * parts_of<T>;
    const auto solution = routines<T>(format).solution;
    for_each(packs_of<T>(format, nm), operations * lanes_of<T>(format), [&](int64_t pack) {
        if (alpha == T(0))
            clear<T>(task.b, task.m, task.n, pack, lanes_of<T>(format) * parts_of<T>);
        else
            solution(task, pack);
    });
}

/// visit(element of the plain matrix, real part's place in the pack) for all elements of matrix `source` in
/// lane `lane`
template <class T, class Matrix, class R, class Visit>
void visit_lane(int32_t layout, int64_t m, int64_t n, Matrix *plain, int64_t lda,
                const compact_view<R> &packed, int64_t pack, int64_t lane, const Visit &visit)
{
    const int64_t row = row_major(layout) ? lda : 1, column = row_major(layout) ? 1 : lda;
    R *first = packed.first + pack * packed.pack + lane;
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < m; ++i)
            visit(plain[i * row + j * column], first + i * packed.row + j * packed.column);
}

template <class T>
void pack(int32_t layout, int64_t m, int64_t n, const T *const *a, int64_t lda, real_of<T> *ap,
          int64_t ldap, int32_t format, int64_t nm)
{
    if (const int64_t wrong = wrong_option({layout_option(1, layout), format_option(8, format)}))
        return report("XKL_?GEPACK_COMPACT ", letter_of<T>, wrong);
    if (m <= 0 || n <= 0 || nm <= 0)
        return;
    const int64_t lanes = lanes_of<T>(format);
    const auto packed = view<T>(layout, m, n, ap, ldap, format);
    for_each(packs_of<T>(format, nm), static_cast<double>(m * n * lanes), [&](int64_t pack) {
        for (int64_t lane = 0; lane < lanes; ++lane)
            visit_lane<T>(layout, m, n, a[std::min(pack * lanes + lane, nm - 1)], lda, packed, pack, lane,
                          [&](const T &plain, real_of<T> *place) {
                              place[0] = std::real(plain);
                              if constexpr (element<T>::is_complex)
                                  place[lanes] = plain.imag();
                          });
    });
}

template <class T>
void unpack(int32_t layout, int64_t m, int64_t n, T *const *a, int64_t lda, const real_of<T> *ap,
            int64_t ldap, int32_t format, int64_t nm)
{
    if (const int64_t wrong = wrong_option({layout_option(1, layout), format_option(8, format)}))
        return report("XKL_?GEUNPACK_COMPACT ", letter_of<T>, wrong);
    if (m <= 0 || n <= 0 || nm <= 0)
        return;
    const int64_t lanes = lanes_of<T>(format);
    const auto packed = view<T>(layout, m, n, ap, ldap, format);
    for_each(nm, static_cast<double>(m * n), [&](int64_t matrix) {
        visit_lane<T>(layout, m, n, a[matrix], lda, packed, matrix / lanes, matrix % lanes,
                      [&](T &plain, const real_of<T> *place) {
                          if constexpr (element<T>::is_complex)
                              plain = {place[0], place[lanes]};
                          else
                              plain = place[0];
                      });
    });
}

template <class T>
void xkl_gemm_compact(const int32_t *layout, const int32_t *transa, const int32_t *transb, const int64_t *m,
                      const int64_t *n, const int64_t *k, const T *alpha, const real_of<T> *a,
                      const int64_t *lda, const real_of<T> *b, const int64_t *ldb, const T *beta,
                      real_of<T> *c, const int64_t *ldc, const int32_t *format, const int64_t *nm)
{
    multiply<T>(*layout, *transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc, *format,
                *nm);
}

template <class T>
void xkl_trsm_compact(const int32_t *layout, const int32_t *side, const int32_t *uplo,
                      const int32_t *transa, const int32_t *diag, const int64_t *m, const int64_t *n,
                      const T *alpha, const real_of<T> *a, const int64_t *lda, real_of<T> *b,
                      const int64_t *ldb, const int32_t *format, const int64_t *nm)
{
    solve<T>(*layout, *side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb, *format, *nm);
}

template <class T>
void xkl_gepack_compact(const int32_t *layout, const int64_t *m, const int64_t *n, const T *const *a,
                        const int64_t *lda, real_of<T> *ap, const int64_t *ldap, const int32_t *format,
                        const int64_t *nm)
{
    pack<T>(*layout, *m, *n, a, *lda, ap, *ldap, *format, *nm);
}

template <class T>
void xkl_geunpack_compact(const int32_t *layout, const int64_t *m, const int64_t *n, T *const *a,
                          const int64_t *lda, const real_of<T> *ap, const int64_t *ldap,
                          const int32_t *format, const int64_t *nm)
{
    unpack<T>(*layout, *m, *n, a, *lda, ap, *ldap, *format, *nm);
}

inline int64_t xkl_get_format_compact()
{
    const instruction_level level = level_in_force();
    if (level >= instruction_level::avx512)
        return XKL_COMPACT_512;
    return level >= instruction_level::avx2 ? XKL_COMPACT_256 : XKL_COMPACT_128;
}

} // namespace xkl::core
