// The singular value decomposition of the snapshots for the dynamic mode decomposition, by any of LAPACK's
// four methods, and the workspaces that these need.
#pragma once

#include "arguments.h"
#include "call.h"

#include <algorithm>

namespace xkl::core {

/// Lengths of a caller's workspaces: of the type's own elements, of reals (complex types only), of integers.
struct workspace_sizes {
    int64_t least, best, reals, integers;
};

template <class T>
struct workspaces {
    T *work;
    int64_t size;
    real_of<T> *reals; // complex types only
    int64_t real_size;
    int64_t *integers;
    int64_t integer_size;
};

/// Methods of the decomposition, as callers number them.
enum dmd_method : int64_t { qr_svd = 1, divided_svd = 2, preconditioned_svd = 3, jacobi_svd = 4 };

/// Matrices of a decomposition: X is m by n, n <= m, and left singular vectors take its place.
template <class T>
struct dmd_svd {
    int64_t method, m, n;
    T *x;
    int64_t ldx;
    T *z; // m by n, workspace
    int64_t ldz;
    T *w; // n by n, right singular vectors: adjoint, but for the method of Jacobi
    int64_t ldw;

    bool right_vectors_are_columns() const { return method == jacobi_svd; }
    workspace_sizes sizes() const;
    int64_t compute(real_of<T> *sigma, const workspaces<T> &space, int64_t &rank) const;

  private:
    int64_t run(real_of<T> *sigma, const workspaces<T> &space, int64_t &rank) const;
    workspace_sizes asked() const;
    /// Taken from the workspace of real types. A matrix of one row needs two, which callers don't know of.
    int64_t preconditioner_reals() const { return element<T>::is_complex || m == 1 ? 0 : m; }
};

/// Calls the routine of the method. With sizes of -1 it only tells what workspace it wants.
template <class T>
int64_t dmd_svd<T>::run(real_of<T> *sigma, const workspaces<T> &space, int64_t &rank) const
{
    constexpr bool complex = element<T>::is_complex;
    constexpr int64_t one = 1;
    const auto &[work, size, reals, real_size, integers, integer_size] = space;
    int64_t info = 0;
    rank = n;
    if (method == qr_svd) {
        if constexpr (complex)
            call(entries::gesvd<T>, 'O', 'S', m, n, x, ldx, sigma, work, one, w, ldw, work, size, reals,
                 &info);
        else
            call(entries::gesvd<T>, 'O', 'S', m, n, x, ldx, sigma, work, one, w, ldw, work, size, &info);
    } else if (method == divided_svd) {
        if constexpr (complex)
            call(entries::gesdd<T>, 'O', m, n, x, ldx, sigma, work, one, w, ldw, work, size, reals,
                 integers, &info);
        else
            call(entries::gesdd<T>, 'O', m, n, x, ldx, sigma, work, one, w, ldw, work, size, integers,
                 &info);
    } else if (method == preconditioned_svd) {
        call(entries::gesvdq<T>, 'H', 'P', 'N', 'R', 'R', m, n, x, ldx, sigma, z, ldz, w, ldw, &rank,
             integers, integer_size, work, size, reals, real_size, &info);
    } else {
        if constexpr (complex)
            call(entries::gejsv<T>, 'F', 'U', 'V', 'N', 'N', 'P', m, n, x, ldx, sigma, z, ldz, w, ldw, work,
                 size, reals, real_size, integers, &info);
        else
            call(entries::gejsv<T>, 'F', 'U', 'V', 'N', 'N', 'P', m, n, x, ldx, sigma, z, ldz, w, ldw, work,
                 size, integers, &info);
    }
    return info;
}

/// Decomposes X; real types keep the reals that the preconditioned method wants in the other workspace.
template <class T>
int64_t dmd_svd<T>::compute(real_of<T> *sigma, const workspaces<T> &space, int64_t &rank) const
{
    workspaces<T> own = space;
    real_of<T> for_one_row[2];
    if constexpr (!element<T>::is_complex)
        if (method == preconditioned_svd) {
            const int64_t taken = preconditioner_reals();
            own.reals = taken > 0 ? space.work : for_one_row;
            own.real_size = std::max<int64_t>(taken, 2);
            own.work += taken;
            own.size -= taken;
        }
    const int64_t info = run(sigma, own, rank);
    if (info == 0 && (method == preconditioned_svd || method == jacobi_svd))
        call(entries::lacpy<T>, 'A', m, rank, z, ldz, x, ldx);
    return info;
}

/// What the routine itself answers.
template <class T>
workspace_sizes dmd_svd<T>::asked() const
{
    T answer[2]{};
    real_of<T> reals[2]{}, sigma;
    int64_t integers[4]{}, rank;
    const dmd_svd query{method,
                        m,
                        n,
                        answer,
                        std::max<int64_t>(1, m),
                        answer,
                        std::max<int64_t>(1, m),
                        answer,
                        std::max<int64_t>(1, n)};
    query.run(&sigma, {answer, -1, reals, -1, integers, -1}, rank);
    return {size_in(answer[1]), size_in(answer[0]), size_in(reals[0]), integers[0]};
}

template <class T>
workspace_sizes dmd_svd<T>::sizes() const
{
    constexpr bool complex = element<T>::is_complex;
    if (method == jacobi_svd && !complex) { // the only one that answers no questions
        const int64_t size = std::max<int64_t>({7, 2 * m + n, 6 * n + 2 * n * n});
        return {size, size, 0, std::max<int64_t>(3, m + 3 * n)};
    }
    workspace_sizes sizes = asked();
    if (method == qr_svd) {
        sizes.least = complex ? 2 * n + m : std::max(3 * n + m, 5 * n);
        sizes.reals = 5 * n;
        sizes.integers = 1;
    } else if (method == divided_svd) {
        sizes.least = complex ? 2 * n * n + 2 * n + m : 3 * n * n + std::max(m, 5 * n * n + 4 * n);
        sizes.reals = std::max(5 * n * n + 7 * n, 2 * m * n + 2 * n * n + n);
        sizes.integers = 8 * n;
    } else if (method == preconditioned_svd) {
        sizes.least += preconditioner_reals();
        sizes.best += preconditioner_reals();
        sizes.integers = std::max<int64_t>(1, m + n - 1);
    } else {
        sizes.integers = std::max<int64_t>(3, m + 3 * n);
    }
    sizes.best = std::max(sizes.best, sizes.least);
    return sizes;
}

} // namespace xkl::core
