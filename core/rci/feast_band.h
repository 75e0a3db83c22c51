// FEAST for band matrices. Element (i,j) lies in a[i - j + above + j*lda], above being the number of
// diagonals given above the main one: kla for uplo U and F, none for L.
#pragma once

#include "feast_drive.h"

namespace xkl::core {
namespace feast {

template <class T>
struct band_matrix {
    char uplo;
    int64_t n, width;
    const T *a;
    int64_t lda;

    int64_t rows() const { return is(uplo, 'F') ? 2 * width + 1 : width + 1; }
    bool has(int64_t i, int64_t j) const { return std::abs(i - j) <= width; }
    T at(int64_t i, int64_t j) const
    {
        const int64_t above = is(uplo, 'L') ? 0 : width;
        const bool stored = is(uplo, 'F') || (is(uplo, 'L') ? i >= j : i <= j);
        return stored ? a[i - j + above + j * lda] : conjugate(a[j - i + above + i * lda]);
    }
    void multiply(const T *x, T *y, int64_t columns) const
    {
        constexpr int64_t one = 1;
        for (int64_t k = 0; k < columns; ++k, x += n, y += n) {
            if (is(uplo, 'F'))
                call(entries::gbmv<T>, 'N', n, n, width, width, T(1), a, lda, x, one, T(0), y, one);
            else if constexpr (element<T>::is_complex)
                call(entries::hbmv<T>, uplo, n, width, T(1), a, lda, x, one, T(0), y, one);
            else
                call(entries::sbmv<T>, uplo, n, width, T(1), a, lda, x, one, T(0), y, one);
        }
    }
};

template <class T>
class band_pencil {
  public:
    using complex = std::complex<real_of<T>>;

    /// b is null for a standard problem
    band_pencil(const band_matrix<T> &a, const band_matrix<T> *b)
        : a_(a), b_(b), width_(std::max(a.width, b ? b->width : 0)), ld_(3 * width_ + 1),
          factors_(iss::space_for<complex>(ld_ * a.n)), pivots_(iss::space_for<int64_t>(a.n))
    {
    }
    bool has_memory() const { return factors_ && pivots_; }

    int64_t factor(complex z)
    {
        const int64_t n = a_.n;
        std::fill(factors_.get(), factors_.get() + ld_ * n, complex());
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = std::max<int64_t>(0, j - width_); i <= std::min(n - 1, j + width_); ++i) {
                complex b(!b_ && i == j ? 1 : 0), a;
                if (b_ && b_->has(i, j))
                    b = complex(b_->at(i, j));
                if (a_.has(i, j))
                    a = complex(a_.at(i, j));
                factors_[2 * width_ + i - j + j * ld_] = product(z, b) - a;
            }
        int64_t info = 0;
        call(entries::gbtrf<complex>, n, n, width_, width_, factors_.get(), ld_, pivots_.get(), &info);
        return info == 0 ? success : singular_system;
    }
    int64_t solve(complex *b, int64_t columns, bool adjoint) const
    {
        int64_t info = 0;
        call(entries::gbtrs<complex>, adjoint ? 'C' : 'N', a_.n, width_, width_, columns, factors_.get(),
             ld_, pivots_.get(), b, a_.n, &info);
        return success;
    }
    void multiply_a(const T *x, T *y, int64_t columns) const { a_.multiply(x, y, columns); }
    void multiply_b(const T *x, T *y, int64_t columns) const
    {
        b_ ? b_->multiply(x, y, columns) : multiply_by_one(x, y, columns * a_.n);
    }

  private:
    band_matrix<T> a_;
    const band_matrix<T> *b_;
    int64_t width_, ld_;
    iss::space<complex> factors_;
    iss::space<int64_t> pivots_;
};

template <class T>
void solve_band(const band_matrix<T> &a, const band_matrix<T> *b, const search<T> &in)
{
    band_pencil<T> pencil(a, b);
    if (!pencil.has_memory())
        *in.info = no_memory;
    else
        drive<T>(a.n, pencil, in);
}

} // namespace feast

template <class T>
void feast_sbev(const char *uplo, const int64_t *n, const int64_t *kla, const T *a, const int64_t *lda,
                int64_t *fpm, real_of<T> *epsout, int64_t *loop, const real_of<T> *emin,
                const real_of<T> *emax, int64_t *m0, real_of<T> *e, T *x, int64_t *m, real_of<T> *res,
                int64_t *info)
{
    const feast::band_matrix<T> matrix{*uplo, *n, *kla, a, *lda};
    if (feast::refused(info, {{1, feast::good_triangle(uplo)},
                              {2, *n > 0},
                              {3, *kla >= 0 && *kla < *n},
                              {5, *lda >= matrix.rows()}}))
        return;
    feast::solve_band<T>(matrix, nullptr, {fpm, epsout, loop, emin, emax, m0, e, x, m, res, info});
}

template <class T>
void feast_sbgv(const char *uplo, const int64_t *n, const int64_t *kla, const T *a, const int64_t *lda,
                const int64_t *klb, const T *b, const int64_t *ldb, int64_t *fpm, real_of<T> *epsout,
                int64_t *loop, const real_of<T> *emin, const real_of<T> *emax, int64_t *m0, real_of<T> *e,
                T *x, int64_t *m, real_of<T> *res, int64_t *info)
{
    const feast::band_matrix<T> matrix{*uplo, *n, *kla, a, *lda}, other{*uplo, *n, *klb, b, *ldb};
    if (feast::refused(info, {{1, feast::good_triangle(uplo)},
                              {2, *n > 0},
                              {3, *kla >= 0 && *kla < *n},
                              {5, *lda >= matrix.rows()},
                              {6, *klb >= 0 && *klb < *n},
                              {8, *ldb >= other.rows()}}))
        return;
    feast::solve_band<T>(matrix, &other, {fpm, epsout, loop, emin, emax, m0, e, x, m, res, info});
}

template <class T, class... A>
void feast_hbev(A... arguments)
{
    feast_sbev<T>(arguments...);
}

template <class T, class... A>
void feast_hbgv(A... arguments)
{
    feast_sbgv<T>(arguments...);
}

} // namespace xkl::core
