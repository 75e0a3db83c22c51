// The projection of an eigenproblem onto a subspace: given q, A q and B q, they are turned so that q holds
// the approximate eigenvectors, orthonormal in B.
#pragma once

#include "feast_control.h"
#include "incomplete_rows.h"
#include "lapack/call.h"

#include <limits>
#include <numeric>

namespace xkl::core::feast {

template <class T>
struct subspace {
    using real = real_of<T>;
    static constexpr char adjoint = element<T>::is_complex ? 'C' : 'T';

    int64_t n, size;
    T *q, *aq, *bq; // n by size each
    T *reduced_a, *reduced_b;
    real *lambda;

    /// reduced := q^H * product, size by size
    void reduce(const T *product, T *reduced) const
    {
        call(entries::gemm<T>, adjoint, 'N', size, size, n, T(1), q, n, product, n, T(0), reduced, size);
    }

    /// Solves the reduced problem and turns the vectors. Directions that the subspace has twice are
    /// dropped: `size` says how many are left. Those with eigenvalues from emin to emax come first, in
    /// ascending order; inside tells their number.
    int64_t project(real emin, real emax, int64_t &inside)
    {
        const auto workspace = iss::space_for<T>(3 * size * size + block_rows * size);
        if (!workspace)
            return no_memory;
        T *const basis = workspace.get(), *const matrix = basis + size * size,
                 *const spare = matrix + size * size;
        int64_t rank = 0;
        if (!whiten(basis, rank))
            return reduced_failed;
        if (rank == 0) { // the filter left nothing: no eigenvalue is near
            inside = size = 0;
            return success;
        }
        call(entries::gemm<T>, 'N', 'N', size, rank, size, T(1), reduced_a, size, basis, size, T(0), spare,
             size);
        call(entries::gemm<T>, adjoint, 'N', rank, rank, size, T(1), basis, size, spare, size, T(0), matrix,
             rank);
        if (!diagonalize(matrix, rank, lambda))
            return reduced_failed;
        call(entries::gemm<T>, 'N', 'N', size, rank, rank, T(1), basis, size, matrix, rank, T(0), spare,
             size);
        order(spare, basis, rank, emin, emax, inside);
        for (T *vectors : {q, aq, bq})
            turn(vectors, basis, rank, spare);
        size = rank;
        return success;
    }

  private:
    static constexpr int64_t block_rows = 64;

    /// Eigenvectors of a Hermitian matrix in its place; false if that failed, or no memory was left
    static bool diagonalize(T *matrix, int64_t order, real *values)
    {
        int64_t info = 0;
        const auto work = iss::space_for<T>(66 * order + 64);
        if (!work)
            return false;
        if constexpr (element<T>::is_complex) {
            const auto reals = iss::space_for<real>(3 * order);
            if (!reals)
                return false;
            call(entries::heev<T>, 'V', 'L', order, matrix, order, values, work.get(), 66 * order + 64,
                 reals.get(), &info);
        } else
            call(entries::syev<T>, 'V', 'L', order, matrix, order, values, work.get(), 66 * order + 64,
                 &info);
        return info == 0;
    }

    /// basis^H * reduced_b * basis = 1, for as many columns as reduced_b has rank. False where nothing of B
    /// is positive.
    bool whiten(T *basis, int64_t &rank) const
    {
        const auto weights = iss::space_for<real>(size);
        std::copy(reduced_b, reduced_b + size * size, basis);
        if (!weights || !diagonalize(basis, size, weights.get()))
            return false;
        if (!(weights[size - 1] >= 0))
            return false;
        const real least = weights[size - 1] * std::numeric_limits<real>::epsilon() * static_cast<real>(n);
        rank = 0;
        for (int64_t k = 0; k < size; ++k) {
            if (!(weights[k] > least))
                continue;
            const real by = 1 / std::sqrt(weights[k]);
            for (int64_t i = 0; i < size; ++i)
                basis[rank * size + i] = basis[k * size + i] * by;
            ++rank;
        }
        return true;
    }

    /// Copies the columns of `from`, whose values are ascending, with those inside first.
    void order(const T *from, T *to, int64_t rank, real emin, real emax, int64_t &inside) const
    {
        real *const first = std::lower_bound(lambda, lambda + rank, emin);
        real *const last = std::upper_bound(first, lambda + rank, emax);
        inside = last - first;
        const int64_t before = first - lambda;
        const auto column_of = [&](int64_t k) {
            return k < inside ? before + k : k < inside + before ? k - inside : k;
        };
        for (int64_t k = 0; k < rank; ++k)
            std::copy(from + column_of(k) * size, from + (column_of(k) + 1) * size, to + k * size);
        std::rotate(lambda, first, last);
    }

    /// vectors := vectors * by, a few rows at a time
    void turn(T *vectors, const T *by, int64_t rank, T *spare) const
    {
        for (int64_t row = 0; row < n; row += block_rows) {
            const int64_t rows = std::min(block_rows, n - row);
            for (int64_t k = 0; k < size; ++k)
                std::copy_n(vectors + k * n + row, rows, spare + k * rows);
            call(entries::gemm<T>, 'N', 'N', rows, rank, size, T(1), spare, rows, by, size, T(0),
                 vectors + row, n);
        }
    }
};

} // namespace xkl::core::feast
