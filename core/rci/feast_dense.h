// FEAST for dense matrices. uplo tells what is given: a triangle, or F the full matrix.
#pragma once

#include "feast_drive.h"

namespace xkl::core {
namespace feast {

template <class T>
struct dense_matrix {
    char uplo;
    int64_t n;
    const T *a;
    int64_t lda;

    T at(int64_t i, int64_t j) const
    {
        const bool stored = is(uplo, 'F') || (is(uplo, 'L') ? i >= j : i <= j);
        return stored ? a[i + j * lda] : conjugate(a[j + i * lda]);
    }
    void multiply(const T *x, T *y, int64_t columns) const
    {
        if (is(uplo, 'F'))
            call(entries::gemm<T>, 'N', 'N', n, columns, n, T(1), a, lda, x, n, T(0), y, n);
        else if constexpr (element<T>::is_complex)
            call(entries::hemm<T>, 'L', uplo, n, columns, T(1), a, lda, x, n, T(0), y, n);
        else
            call(entries::symm<T>, 'L', uplo, n, columns, T(1), a, lda, x, n, T(0), y, n);
    }
};

template <class T>
class dense_pencil {
  public:
    using complex = std::complex<real_of<T>>;

    /// b is null for a standard problem
    dense_pencil(const dense_matrix<T> &a, const dense_matrix<T> *b)
        : a_(a), b_(b), factors_(iss::space_for<complex>(a.n * a.n)), pivots_(iss::space_for<int64_t>(a.n))
    {
    }
    bool has_memory() const { return factors_ && pivots_; }

    int64_t factor(complex z)
    {
        const int64_t n = a_.n;
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i) {
                const complex b = b_ ? complex(b_->at(i, j)) : complex(i == j ? 1 : 0);
                factors_[i + j * n] = product(z, b) - complex(a_.at(i, j));
            }
        int64_t info = 0;
        call(entries::getrf<complex>, n, n, factors_.get(), n, pivots_.get(), &info);
        return info == 0 ? success : singular_system;
    }
    int64_t solve(complex *b, int64_t columns, bool adjoint) const
    {
        int64_t info = 0;
        call(entries::getrs<complex>, adjoint ? 'C' : 'N', a_.n, columns, factors_.get(), a_.n,
             pivots_.get(), b, a_.n, &info);
        return success;
    }
    void multiply_a(const T *x, T *y, int64_t columns) const { a_.multiply(x, y, columns); }
    void multiply_b(const T *x, T *y, int64_t columns) const
    {
        b_ ? b_->multiply(x, y, columns) : multiply_by_one(x, y, columns * a_.n);
    }

  private:
    dense_matrix<T> a_;
    const dense_matrix<T> *b_;
    iss::space<complex> factors_;
    iss::space<int64_t> pivots_;
};

template <class T>
void solve_dense(const dense_matrix<T> &a, const dense_matrix<T> *b, const search<T> &in)
{
    dense_pencil<T> pencil(a, b);
    if (!pencil.has_memory())
        *in.info = no_memory;
    else
        drive<T>(a.n, pencil, in);
}

} // namespace feast

template <class T>
void feast_syev(const char *uplo, const int64_t *n, const T *a, const int64_t *lda, int64_t *fpm,
                real_of<T> *epsout, int64_t *loop, const real_of<T> *emin, const real_of<T> *emax,
                int64_t *m0, real_of<T> *e, T *x, int64_t *m, real_of<T> *res, int64_t *info)
{
    if (feast::refused(info, {{1, feast::good_triangle(uplo)}, {2, *n > 0}, {4, *lda >= *n}}))
        return;
    feast::solve_dense<T>({*uplo, *n, a, *lda}, nullptr,
                          {fpm, epsout, loop, emin, emax, m0, e, x, m, res, info});
}

template <class T>
void feast_sygv(const char *uplo, const int64_t *n, const T *a, const int64_t *lda, const T *b,
                const int64_t *ldb, int64_t *fpm, real_of<T> *epsout, int64_t *loop, const real_of<T> *emin,
                const real_of<T> *emax, int64_t *m0, real_of<T> *e, T *x, int64_t *m, real_of<T> *res,
                int64_t *info)
{
    if (feast::refused(info,
                       {{1, feast::good_triangle(uplo)}, {2, *n > 0}, {4, *lda >= *n}, {6, *ldb >= *n}}))
        return;
    const feast::dense_matrix<T> other{*uplo, *n, b, *ldb};
    feast::solve_dense<T>({*uplo, *n, a, *lda}, &other,
                          {fpm, epsout, loop, emin, emax, m0, e, x, m, res, info});
}

template <class T, class... A>
void feast_heev(A... arguments)
{
    feast_syev<T>(arguments...);
}

template <class T, class... A>
void feast_hegv(A... arguments)
{
    feast_sygv<T>(arguments...);
}

} // namespace xkl::core
