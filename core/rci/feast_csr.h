// FEAST for sparse matrices: compressed rows, indices from 1. The shifted systems go to the engines of the
// direct solvers; their pattern, that of A and B together, is analysed once.
#pragma once

#include "feast_drive.h"
#include "solvers/engine.h"
#include "solvers/ordering.h"

#include <new>
#include <vector>

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

    /// b is null for a standard problem
    csr_pencil(const csr_matrix<T> &a, const csr_matrix<T> *b) : a_(a), b_(b)
    {
        find_pattern();
        constexpr int64_t small_order = 1000, largest_order = std::numeric_limits<int32_t>::max() / 2;
        constexpr solvers::matrix_kind general = {solvers::symmetry::none, false, true, true};
        const bool small = a.n <= small_order || a.n > largest_order;
        const solvers::engine_options options = {.kind = general,
                                                 .ordering = solvers::own_ordering::dissection};
        engine_ = small ? solvers::make_row_engine<complex>(options)
                        : solvers::make_front_engine<complex>(options);
        order_ = small ? solvers::column_degree(pattern_) : solvers::minimum_degree(pattern_);
    }

    int64_t factor(complex z)
    {
        std::fill(values_.begin(), values_.end(), complex());
        a_.for_each([&](int64_t i, int64_t j, T value) { values_[place_of(i, j)] -= complex(value); });
        if (b_)
            b_->for_each([&](int64_t i, int64_t j, T value) {
                values_[place_of(i, j)] += product(z, complex(value));
            });
        else
            for (int64_t i = 0; i < a_.n; ++i)
                values_[place_of(i, i)] += z;
        if (!analysed_)
            if (const int64_t error = engine_->analyse(pattern_, values_.data(), order_))
                return result_of(error);
        analysed_ = true;
        return result_of(engine_->factor(pattern_, values_.data()));
    }
    /// The adjoint's solution is the conjugate of the transpose's for conjugate sides.
    int64_t solve(complex *b, int64_t columns, bool adjoint)
    {
        const auto conjugate_all = [&] { std::transform(b, b + a_.n * columns, b, conjugate<complex>); };
        if (adjoint)
            conjugate_all();
        const int64_t error = engine_->solve(adjoint, b, columns);
        if (adjoint)
            conjugate_all();
        return result_of(error);
    }
    void multiply_a(const T *x, T *y, int64_t columns) const { a_.multiply(x, y, columns); }
    void multiply_b(const T *x, T *y, int64_t columns) const
    {
        b_ ? b_->multiply(x, y, columns) : multiply_by_one(x, y, columns * a_.n);
    }

  private:
    static int64_t result_of(int64_t error)
    {
        return error == XKL_PARDISO_SUCCESS         ? success
               : error == XKL_PARDISO_OUT_OF_MEMORY ? no_memory
                                                    : singular_system;
    }
    /// The diagonal and what either matrix has, by rows with ascending columns
    void find_pattern()
    {
        std::vector<std::vector<int64_t>> rows(a_.n);
        const auto add = [&](int64_t i, int64_t j, T) { rows[i].push_back(j); };
        for (int64_t i = 0; i < a_.n; ++i)
            rows[i].push_back(i);
        a_.for_each(add);
        if (b_)
            b_->for_each(add);
        pattern_.n = a_.n;
        pattern_.start.push_back(0);
        for (std::vector<int64_t> &row : rows) {
            std::sort(row.begin(), row.end());
            row.erase(std::unique(row.begin(), row.end()), row.end());
            pattern_.column.insert(pattern_.column.end(), row.begin(), row.end());
            pattern_.start.push_back(pattern_.elements());
        }
        values_.resize(pattern_.elements());
    }
    int64_t place_of(int64_t i, int64_t j) const
    {
        const auto first = pattern_.column.begin() + pattern_.start[i];
        return std::lower_bound(first, pattern_.column.begin() + pattern_.start[i + 1], j) -
               pattern_.column.begin();
    }

    csr_matrix<T> a_;
    const csr_matrix<T> *b_;
    solvers::pattern pattern_;
    std::vector<complex> values_;
    std::vector<int64_t> order_;
    std::unique_ptr<solvers::engine<complex>> engine_;
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
