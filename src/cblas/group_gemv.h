// The group batch of matrix-vector products, whose row-major groups may need conj(A).
#pragma once

#include "cblas/conjugate.h"
#include "cblas/groups.h"

namespace xkl::cblas {

/// The arguments of one call. A group that needs conj(A) goes by itself, with conjugated vectors and
/// scalars, as ?GEMV does it; the groups between such go together.
template <class R, class Trans, class S, class A, class Y>
struct gemv_groups {
    using element = typename R::element;

    bool row;
    const Trans *trans;
    const int64_t *m, *n;
    const S *alpha;
    const A *a;
    const int64_t *lda;
    const A *x;
    const int64_t *incx;
    const S *beta;
    const Y *y;
    const int64_t *incy, *group_size;

    bool needs_conjugates(int64_t g) const
    {
        return row && option(trans, g) == CblasConjTrans && group_size[g] > 0 && m[g] > 0 &&
               !equals<R>(*entry<R>(alpha, g), 0);
    }

    /// Elements of memory for a group's copies, with a place behind them for each copy's address.
    int64_t copies_room(int64_t g) const
    {
        int64_t each, all;
        if (__builtin_add_overflow(m[g], 1, &each) || __builtin_mul_overflow(group_size[g], each, &all))
            return INT64_MAX; // which no buffer has room for
        return all;
    }

    template <class Scalar, class X>
    void send(int64_t g, int64_t groups, int64_t p, const Scalar *alphas, const X *vectors,
              const int64_t *increments, const Scalar *betas) const
    {
        letter_buffer buffer;
        const char *letters = buffer.fill(
            groups, [&](int64_t i) { return trans_letter(transposed_once, option(trans, g + i), row); });
        call_frame<R>(letters, (row ? n : m) + g, (row ? m : n) + g, alphas, a + p, lda + g, vectors,
                      increments, betas, y + p, incy + g, groups, group_size + g);
    }

    void send_plain(int64_t g, int64_t groups, int64_t p) const
    {
        send(g, groups, p, entry<R>(alpha, g), x + p, incx + g, entry<R>(beta, g));
    }

    void conjugate_results(int64_t g, int64_t p) const
    {
        for (int64_t i = 0; i < group_size[g]; ++i)
            conjugate(static_cast<element *>(y[p + i]), n[g], incy[g]);
    }

    void send_conjugated(int64_t g, int64_t p, element *room) const
    {
        const int64_t one = 1, vectors = group_size[g], length = m[g];
        static_assert(sizeof(element) >= sizeof(void *));
        const auto copies = reinterpret_cast<const void **>(room + vectors * length);
        for (int64_t i = 0; i < vectors; ++i) {
            copies[i] = room + i * length;
            copy_conjugated(room + i * length, x[p + i], length, incx[g]);
        }
        const element alpha_bar = conjugated(*entry<R>(alpha, g)),
                      beta_bar = conjugated(*entry<R>(beta, g));
        conjugate_results(g, p);
        send<element, const void *>(g, 1, p, &alpha_bar, copies, &one, &beta_bar);
        conjugate_results(g, p);
    }

    int64_t largest_room(int64_t group_count) const
    {
        int64_t largest = 0;
        for (int64_t g = 0; g < group_count; ++g) {
            const int64_t room = needs_conjugates(g) ? copies_room(g) : 0;
            largest = room > largest ? room : largest;
        }
        return largest;
    }

    /// The memory for the largest group's copies is taken before the first call, so that a failure leaves
    /// all results as they were.
    void send_with_copies(int64_t group_count, int64_t room) const
    {
        const copy_buffer<element> copies(1, room);
        if (!copies)
            return cblas_xerbla_malloc_error(R::name);
        for_each_chunk(
            group_count, group_size, [this](int64_t g) { return needs_conjugates(g); },
            [&](int64_t g, int64_t groups, int64_t p) {
                if (needs_conjugates(g))
                    send_conjugated(g, p, copies.data());
                else
                    send_plain(g, groups, p);
            });
    }
};

template <class R, class Trans, class S, class A, class Y>
void gemv_batch(int layout, const Trans *trans, const int64_t *m, const int64_t *n, const S *alpha,
                const A *a, const int64_t *lda, const A *x, const int64_t *incx, const S *beta, const Y *y,
                const int64_t *incy, int64_t group_count, const int64_t *group_size)
{
    const bool row = layout == CblasRowMajor;
    const auto lda_bound = [=](int64_t g) { return line_length(row, m[g], n[g]); };
    if (const int bad = !is_layout(layout)                           ? 1
                        : group_count < 0                            ? 13
                        : fails_option(trans, group_count, is_trans) ? 2
                        : fails_size(m, group_count)                 ? 3
                        : fails_size(n, group_count)                 ? 4
                        : fails_ld(lda, group_count, lda_bound)      ? 7
                        : fails_increment(incx, group_count)         ? 9
                        : fails_increment(incy, group_count)         ? 12
                                                                     : 0)
        return cblas_xerbla(R::name, bad);
    const gemv_groups<R, Trans, S, A, Y> all{row, trans, m,    n, alpha, a,         lda,
                                             x,   incx,  beta, y, incy,  group_size};
    if constexpr (is_complex<typename R::element>)
        if (const int64_t room = all.largest_room(group_count); room > 0)
            return all.send_with_copies(group_count, room);
    for_each_chunk(group_count, group_size,
                   [&](int64_t g, int64_t groups, int64_t p) { all.send_plain(g, groups, p); });
}

} // namespace xkl::cblas
