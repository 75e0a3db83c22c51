// FEAST for sparse matrices: compressed rows, indices from 1. The shifted systems are solved by the sparse
// LU factors of Eigen; their pattern, that of A and B together, is analysed once.
#pragma once

#include "feast_drive.h"

#include <Eigen/SparseLU>

#include <new>

namespace xkl::core {
namespace feast {

template <class T>
struct csr_matrix {
    char uplo;
    int64_t n;
    const T *a;
    const int64_t *ia, *ja;

    /// body(i, j, value) for each element of the whole matrix, those that are not given included
    template <class Body>
    void for_each(const Body &body) const
    {
        for (int64_t i = 0; i < n; ++i)
            for (int64_t k = ia[i] - 1; k < ia[i + 1] - 1; ++k) {
                const int64_t j = ja[k] - 1;
                if (is(uplo, 'F')) {
                    body(i, j, a[k]);
                    continue;
                }
                if (is(uplo, 'L') ? j > i : j < i)
                    continue; // the other triangle is not looked at
                body(i, j, a[k]);
                if (i != j)
                    body(j, i, conjugate(a[k]));
            }
    }
    bool valid() const
    {
        if (ia[0] != 1)
            return false;
        for (int64_t i = 0; i < n; ++i) {
            if (ia[i + 1] < ia[i])
                return false;
            for (int64_t k = ia[i] - 1; k < ia[i + 1] - 1; ++k)
                if (ja[k] < 1 || ja[k] > n)
                    return false;
        }
        return true;
    }
    void multiply(const T *x, T *y, int64_t columns) const
    {
        std::fill(y, y + n * columns, T(0));
        for (int64_t c = 0; c < columns; ++c, x += n, y += n)
            for_each([x, y](int64_t i, int64_t j, T value) { y[i] += product(value, x[j]); });
    }
};

template <class T>
class csr_pencil {
  public:
    using complex = std::complex<real_of<T>>;
    using sparse = Eigen::SparseMatrix<complex, Eigen::ColMajor, int64_t>;

    /// b is null for a standard problem
    csr_pencil(const csr_matrix<T> &a, const csr_matrix<T> *b) : a_(a), b_(b), shifted_(a.n, a.n) {}

    bool factor(complex z)
    {
        std::vector<Eigen::Triplet<complex, int64_t>> elements;
        a_.for_each([&](int64_t i, int64_t j, T value) { elements.emplace_back(i, j, -complex(value)); });
        if (b_)
            b_->for_each([&](int64_t i, int64_t j, T value) {
                elements.emplace_back(i, j, product(z, complex(value)));
            });
        else
            for (int64_t i = 0; i < a_.n; ++i)
                elements.emplace_back(i, i, z);
        shifted_.setFromTriplets(elements.begin(), elements.end());
        if (!analysed_)
            factors_.analyzePattern(shifted_);
        analysed_ = true;
        factors_.factorize(shifted_);
        return factors_.info() == Eigen::Success;
    }
    void solve(complex *b, int64_t columns, bool adjoint)
    {
        using dense = Eigen::Matrix<complex, Eigen::Dynamic, Eigen::Dynamic>;
        Eigen::Map<dense> sides(b, a_.n, columns);
        const dense right = sides;
        if (adjoint)
            sides = factors_.adjoint().solve(right);
        else
            sides = factors_.solve(right);
    }
    void multiply_a(const T *x, T *y, int64_t columns) const { a_.multiply(x, y, columns); }
    void multiply_b(const T *x, T *y, int64_t columns) const
    {
        b_ ? b_->multiply(x, y, columns) : multiply_by_one(x, y, columns * a_.n);
    }

  private:
    csr_matrix<T> a_;
    const csr_matrix<T> *b_;
    sparse shifted_;
    Eigen::SparseLU<sparse> factors_;
    bool analysed_ = false;
};

/// The solver's own vectors come from the C++ library, and end a computation that finds no more memory.
template <class T>
void solve_csr(const csr_matrix<T> &a, const csr_matrix<T> *b, const search<T> &in)
try {
    csr_pencil<T> pencil(a, b);
    drive<T>(a.n, pencil, in);
} catch (const std::bad_alloc &) {
    *in.info = no_memory;
}

} // namespace feast

template <class T>
void feast_scsrev(const char *uplo, const int64_t *n, const T *a, const int64_t *ia, const int64_t *ja,
                  int64_t *fpm, real_of<T> *epsout, int64_t *loop, const real_of<T> *emin,
                  const real_of<T> *emax, int64_t *m0, real_of<T> *e, T *x, int64_t *m, real_of<T> *res,
                  int64_t *info)
{
    if (feast::refused(info, {{1, feast::good_triangle(uplo)}, {2, *n > 0}}))
        return;
    const feast::csr_matrix<T> matrix{*uplo, *n, a, ia, ja};
    if (feast::refused(info, {{5, matrix.valid()}}))
        return;
    feast::solve_csr<T>(matrix, nullptr, {fpm, epsout, loop, emin, emax, m0, e, x, m, res, info});
}

template <class T>
void feast_scsrgv(const char *uplo, const int64_t *n, const T *a, const int64_t *ia, const int64_t *ja,
                  const T *b, const int64_t *ib, const int64_t *jb, int64_t *fpm, real_of<T> *epsout,
                  int64_t *loop, const real_of<T> *emin, const real_of<T> *emax, int64_t *m0, real_of<T> *e,
                  T *x, int64_t *m, real_of<T> *res, int64_t *info)
{
    if (feast::refused(info, {{1, feast::good_triangle(uplo)}, {2, *n > 0}}))
        return;
    const feast::csr_matrix<T> matrix{*uplo, *n, a, ia, ja}, other{*uplo, *n, b, ib, jb};
    if (feast::refused(info, {{5, matrix.valid()}, {8, other.valid()}}))
        return;
    feast::solve_csr<T>(matrix, &other, {fpm, epsout, loop, emin, emax, m0, e, x, m, res, info});
}

template <class T, class... A>
void feast_hcsrev(A... arguments)
{
    feast_scsrev<T>(arguments...);
}

template <class T, class... A>
void feast_hcsrgv(A... arguments)
{
    feast_scsrgv<T>(arguments...);
}

} // namespace xkl::core
