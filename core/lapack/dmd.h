// Dynamic mode decomposition, which LAPACK has since version 3.12: Ritz pairs of an operator A of which
// nothing is known but pairs of snapshots, Y = A*X. The operator is compressed onto the leading left
// singular vectors U of X: with X = U*Sigma*V' the Rayleigh quotient is S = U'*A*U = U'*Y*V*inv(Sigma).
#pragma once

#include "blas/kernels.h"
#include "dmd_svd.h"

#include <algorithm>

namespace xkl::core {

/// What a decomposition works on. The letters are those of ?GEDMD.
template <class T>
struct dmd_problem {
    char scaling, vectors, residuals, extra;
    int64_t method, m, n;
    T *x;
    int64_t ldx;
    T *y;
    int64_t ldy;
    int64_t wanted_rank;
    real_of<T> tolerance;
    T *values;             // eigenvalues, or their real parts
    real_of<T> *imaginary; // real types only
    T *z;
    int64_t ldz;
    real_of<T> *res;
    T *b;
    int64_t ldb;
    T *w;
    int64_t ldw;
    T *s;
    int64_t lds;

    bool wants_eigenvectors() const { return !is(vectors, 'N') || is(extra, 'E'); }
    dmd_svd<T> svd() const { return {method, m, n, x, ldx, z, ldz, w, ldw}; }
};

enum class dmd_outcome { fine, bad_x, bad_y, no_singular_values, no_eigenvalues, inconsistent };

template <class T>
int64_t eigen_problem(const dmd_problem<T> &p, int64_t k, const workspaces<T> &space)
{
    constexpr int64_t one = 1;
    const char right = p.wants_eigenvectors() ? 'V' : 'N';
    int64_t info;
    if constexpr (element<T>::is_complex)
        call(entries::geev<T>, 'N', right, k, p.s, p.lds, p.values, p.w, one, p.w, p.ldw, space.work,
             space.size, space.reals, &info);
    else
        call(entries::geev<T>, 'N', right, k, p.s, p.lds, p.values, p.imaginary, p.w, one, p.w, p.ldw,
             space.work, space.size, &info);
    return info;
}

/// Lengths for a problem with snapshots; singular values stand in front of the real workspace.
template <class T>
workspace_sizes sizes_of(const dmd_problem<T> &p)
{
    workspace_sizes sizes = p.svd().sizes();
    T answer{};
    real_of<T> unused;
    dmd_problem<T> query = p;
    query.s = query.w = query.values = &answer;
    eigen_problem(query, p.n, {&answer, -1, &unused, -1, nullptr, -1});
    if constexpr (element<T>::is_complex) {
        sizes.least = std::max<int64_t>({2, sizes.least, 2 * p.n});
        sizes.best = std::max({sizes.least, sizes.best, size_in(answer)});
        sizes.reals = p.n + std::max(sizes.reals, 2 * p.n);
    } else {
        const int64_t eigen = (p.wants_eigenvectors() ? 4 : 3) * p.n;
        sizes.least = std::max<int64_t>(2, p.n + std::max(sizes.least, eigen));
        sizes.best = std::max(sizes.least, p.n + std::max(sizes.best, size_in(answer)));
    }
    return sizes;
}

/// Scales column j of X and Y by the inverse of a norm that may overflow or underflow as a number.
template <class T>
void scale_pair(const dmd_problem<T> &p, int64_t j, T *by)
{
    using real = real_of<T>;
    real scale = 0, sum = 1;
    constexpr int64_t zero = 0, one = 1;
    call(entries::lassq<T>, p.m, by, one, &scale, &sum);
    if (scale == 0 || sum == 0)
        return;
    int64_t info;
    for (T *column : {p.x + j * p.ldx, p.y + j * p.ldy})
        call(entries::lascl<T>, 'G', zero, zero, scale, 1 / std::sqrt(sum), p.m, one, column, p.m, &info);
}

template <class T>
bool is_zero(const T *column, int64_t m)
{
    return std::all_of(column, column + m, [](T each) { return each == T(0); });
}

/// The scaling of the snapshots; false when a zero in X goes with something else in Y.
template <class T>
bool scale_snapshots(const dmd_problem<T> &p)
{
    bool consistent = true;
    for (int64_t j = 0; j < p.n && !is(p.scaling, 'N'); ++j) {
        T *x = p.x + j * p.ldx, *y = p.y + j * p.ldy;
        if (is_zero(x, p.m) && !is_zero(y, p.m)) {
            consistent = false;
            if (is(p.scaling, 'C'))
                std::fill(y, y + p.m, T(0));
        }
        scale_pair<T>(p, j, is(p.scaling, 'Y') ? y : x);
    }
    return consistent;
}

/// The largest element; NaN and infinity pass through.
template <class T>
real_of<T> largest_element(int64_t m, int64_t n, T *a, int64_t lda)
{
    real_of<T> unused;
    return call(entries::lange<T>, 'M', m, n, a, lda, &unused);
}

/// How many singular values count.
template <class T>
int64_t numerical_rank(const dmd_problem<T> &p, const real_of<T> *sigma, int64_t computed)
{
    using real = real_of<T>;
    constexpr real smallest = std::numeric_limits<real>::min();
    const int64_t most = p.wanted_rank > 0 ? std::min(p.wanted_rank, computed) : computed;
    int64_t k = 1;
    for (; k < most && sigma[k] > smallest; ++k)
        if ((p.wanted_rank == -1 && sigma[k] <= sigma[0] * p.tolerance) ||
            (p.wanted_rank == -2 && sigma[k] <= sigma[k - 1] * p.tolerance))
            break;
    return k;
}

/// A*U, into B if that is wanted and into Z otherwise, and S = U'*A*U.
template <class T>
void compress(const dmd_problem<T> &p, int64_t k, const real_of<T> *sigma, T *au, int64_t ldau)
{
    const bool columns = p.svd().right_vectors_are_columns();
    const int64_t along = columns ? 1 : p.ldw, across = columns ? p.ldw : 1;
    for (int64_t i = 0; i < k; ++i)
        call(entries::scal<T>, p.n, T(1 / sigma[i]), p.w + i * across, along);
    gemm<T>('N', columns ? 'N' : 'C', p.m, k, p.n, T(1), p.y, p.ldy, p.w, p.ldw, T(0), au, ldau);
    gemm<T>('C', 'N', k, k, p.m, T(1), p.x, p.ldx, au, ldau, T(0), p.s, p.lds);
}

/// Y := A*Z - Z*Lambda and the norms of its columns. Y holds A*Z already. Real types keep the real and the
/// imaginary part of a conjugate pair's vectors in two columns.
template <class T>
void compute_residuals(const dmd_problem<T> &p, int64_t k)
{
    constexpr int64_t one = 1;
    for (int64_t i = 0; i < k; ++i) {
        T *y = p.y + i * p.ldy;
        const T *z = p.z + i * p.ldz;
        call(entries::axpy<T>, p.m, -p.values[i], z, one, y, one);
        if constexpr (!element<T>::is_complex) {
            const T imaginary = p.imaginary[i];
            if (imaginary > 0) {
                const T *z2 = z + p.ldz;
                T *y2 = y + p.ldy;
                call(entries::axpy<T>, p.m, imaginary, z2, one, y, one);
                call(entries::axpy<T>, p.m, -p.values[i], z2, one, y2, one);
                call(entries::axpy<T>, p.m, -imaginary, z, one, y2, one);
                T unused;
                p.res[i] = p.res[i + 1] = call(entries::lange<T>, 'F', p.m, int64_t(2), y, p.ldy, &unused);
                ++i;
                continue;
            }
        }
        p.res[i] = call(entries::nrm2<T>, p.m, y, one);
    }
}

/// What the caller wants of the eigenvectors W of S.
template <class T>
void lift_vectors(const dmd_problem<T> &p, int64_t k, T *au, int64_t ldau)
{
    const bool residuals = is(p.residuals, 'R'), exact = is(p.extra, 'E');
    T *modes = residuals ? p.y : p.z;
    const int64_t ld = residuals ? p.ldy : p.ldz;
    if (residuals || exact)
        gemm<T>('N', 'N', p.m, k, k, T(1), au, ldau, p.w, p.ldw, T(0), modes, ld);
    if (exact)
        call(entries::lacpy<T>, 'A', p.m, k, modes, ld, p.b, p.ldb);
    if (is(p.vectors, 'V'))
        gemm<T>('N', 'N', p.m, k, k, T(1), p.x, p.ldx, p.w, p.ldw, T(0), p.z, p.ldz);
    if (residuals)
        compute_residuals(p, k);
}

/// The factor by which the method of Jacobi has scaled X goes to Y as well.
template <class T>
void scale_as_jacobi(const dmd_problem<T> &p, const real_of<T> (&factor)[2])
{
    constexpr int64_t zero = 0;
    int64_t info;
    if (factor[0] != factor[1])
        call(entries::lascl<T>, 'G', zero, zero, factor[0], factor[1], p.m, p.n, p.y, p.ldy, &info);
}

/// The decomposition. `sigma` gets the singular values, then two factors if the method is that of Jacobi;
/// the real workspace of `space` stands behind them, where those factors are until the eigenproblem.
template <class T>
dmd_outcome decompose(const dmd_problem<T> &p, int64_t &k, real_of<T> *sigma, const workspaces<T> &space)
{
    using real = real_of<T>;
    k = 0;
    if (const real size = largest_element(p.m, p.n, p.x, p.ldx); !(size > 0) || std::isinf(size))
        return dmd_outcome::bad_x;
    if (!std::isfinite(largest_element(p.m, p.n, p.y, p.ldy)))
        return dmd_outcome::bad_y;
    const bool consistent = scale_snapshots(p);

    int64_t computed;
    if (const int64_t info = p.svd().compute(sigma, space, computed); info != 0)
        return info > 0 ? dmd_outcome::no_singular_values : dmd_outcome::bad_x;
    if (!(sigma[0] > 0))
        return dmd_outcome::bad_x;
    real factor[2]{};
    if (p.method == jacobi_svd) {
        std::copy(sigma + p.n, sigma + p.n + 2, factor);
        scale_as_jacobi(p, factor);
    }

    k = numerical_rank(p, sigma, computed);
    const bool keeps = !is(p.extra, 'N');
    T *au = keeps ? p.b : p.z;
    const int64_t ldau = keeps ? p.ldb : p.ldz;
    compress(p, k, sigma, au, ldau);
    if (eigen_problem(p, k, space) != 0)
        return dmd_outcome::no_eigenvalues;
    lift_vectors(p, k, au, ldau);
    if (p.method == jacobi_svd)
        std::copy(factor, factor + 2, sigma + p.n);
    return consistent ? dmd_outcome::fine : dmd_outcome::inconsistent;
}

} // namespace xkl::core
