// Factorization with the pivots on the diagonal, in the given order: L*D*L^T, L*D*L^H, or L*U for matrices
// whose places are taken as symmetric. Row by row: a row of L (and a column of U) is a triangular solve
// with those above it, whose places follow from the elimination tree. Nothing is exchanged; a pivot that is
// too small goes to the program's pivot routine. That is safe for positive definite and diagonally dominant
// matrices, and what iterative refinement repairs for many others.
#pragma once

#include "service/callbacks.h"
#include "solvers/engine.h"
#include "solvers/ordering.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace xkl::core::solvers {

template <class T>
class fixed_pivots final : public engine<T> {
  public:
    explicit fixed_pivots(const engine_options &options) : options_(options) {}

    int64_t analyse(const pattern &a, const T *, const std::vector<int64_t> &order) override;
    int64_t factor(const pattern &a, const T *values) override;
    int64_t solve(bool transposed, T *x, int64_t nrhs) override
    {
        return solve_by_parts(solve_part::all, transposed, x, nrhs);
    }
    int64_t solve_by_parts(solve_part part, bool transposed, T *x, int64_t nrhs) override;
    bool diagonal(T *result) override
    {
        for (int64_t i = 0; i < n_; ++i)
            result[order_[i]] = diagonal_[i];
        return true;
    }

  private:
    bool unsymmetric() const { return options_.kind.form == symmetry::none; }
    bool conjugated() const { return options_.kind.form == symmetry::conjugated; }
    T mirrored(T value) const { return conjugated() ? conjugate_of(value) : value; }

    void place_elements(const pattern &a);
    void find_tree();
    void count_elements();
    int64_t reach(int64_t k);
    T eliminate(int64_t k, int64_t top, T pivot);
    bool accept(T original, T &pivot, double threshold);
    void lower(bool transposed, T *y) const;
    void upper(bool transposed, T *y) const;
    void divide(T *y) const;

    engine_options options_;
    int64_t n_ = 0;
    std::vector<int64_t> order_;
    // The rows of the permuted matrix left of the diagonal: their columns, and where the element of the row
    // and the one of the column stand among the values (-1: nowhere; ~place: conjugated).
    std::vector<int64_t> row_start_, row_column_, row_place_, column_place_, diagonal_place_;
    std::vector<int64_t> parent_, start_, next_, index_;
    std::vector<T> l_, u_, diagonal_; // columns of L, rows of U at the same places
    std::vector<T> x_, z_;
    std::vector<int64_t> path_, seen_;
};

template <class T>
int64_t fixed_pivots<T>::analyse(const pattern &a, const T *, const std::vector<int64_t> &order)
{
    n_ = a.n;
    order_ = order;
    place_elements(a);
    find_tree();
    count_elements();
    this->facts.nonzeros = start_[n_] * (unsymmetric() ? 2 : 1) + n_;
    this->facts.elements_of_memory = this->facts.nonzeros + start_[n_];
    return XKL_PARDISO_SUCCESS;
}

template <class T>
void fixed_pivots<T>::place_elements(const pattern &a)
{
    const std::vector<int64_t> position = inverse(order_);
    struct element {
        int64_t column, in_row, in_column;
    };
    std::vector<std::vector<element>> rows(n_);
    diagonal_place_.assign(n_, -1);
    constexpr int64_t nowhere = INT64_MIN;
    for (int64_t i = 0; i < n_; ++i)
        for (int64_t k = a.start[i]; k < a.start[i + 1]; ++k) {
            const int64_t p = position[i], q = position[a.column[k]];
            const int64_t mirror = conjugated() ? ~k : k;
            if (p == q)
                diagonal_place_[p] = k;
            else if (p > q)
                rows[p].push_back({q, k, a.triangle ? mirror : nowhere});
            else
                rows[q].push_back({p, a.triangle ? mirror : nowhere, k});
        }
    row_start_.assign(1, 0);
    row_column_.clear();
    row_place_.clear();
    column_place_.clear();
    for (auto &row : rows) {
        std::sort(row.begin(), row.end(),
                  [](const element &x, const element &y) { return x.column < y.column; });
        for (const element &e : row) {
            if (static_cast<int64_t>(row_column_.size()) > row_start_.back() &&
                row_column_.back() == e.column) {
                row_place_.back() = std::max(row_place_.back(), e.in_row);
                column_place_.back() = std::max(column_place_.back(), e.in_column);
                continue;
            }
            row_column_.push_back(e.column);
            row_place_.push_back(e.in_row);
            column_place_.push_back(e.in_column);
        }
        row_start_.push_back(static_cast<int64_t>(row_column_.size()));
    }
}

template <class T>
void fixed_pivots<T>::find_tree()
{
    parent_.assign(n_, -1);
    std::vector<int64_t> ancestor(n_, -1);
    for (int64_t k = 0; k < n_; ++k)
        for (int64_t p = row_start_[k]; p < row_start_[k + 1]; ++p)
            for (int64_t i = row_column_[p], above; i != -1 && i < k; i = above) {
                above = ancestor[i];
                ancestor[i] = k;
                if (above == -1)
                    parent_[i] = k;
            }
}

// Leaves the columns in which row k of L has elements in path_[result] to path_[n - 1], descendants first.
template <class T>
int64_t fixed_pivots<T>::reach(int64_t k)
{
    int64_t top = n_;
    seen_[k] = k;
    for (int64_t p = row_start_[k]; p < row_start_[k + 1]; ++p) {
        int64_t length = 0;
        for (int64_t i = row_column_[p]; seen_[i] != k; i = parent_[i]) {
            path_[length++] = i;
            seen_[i] = k;
        }
        while (length > 0)
            path_[--top] = path_[--length];
    }
    return top;
}

template <class T>
void fixed_pivots<T>::count_elements()
{
    path_.resize(n_);
    seen_.assign(n_, -1);
    std::vector<int64_t> count(n_, 0);
    for (int64_t k = 0; k < n_; ++k)
        for (int64_t p = reach(k); p < n_; ++p)
            ++count[path_[p]];
    start_.assign(n_ + 1, 0);
    std::partial_sum(count.begin(), count.end(), start_.begin() + 1);
    double operations = 0;
    for (const int64_t c : count)
        operations += static_cast<double>(c) * static_cast<double>(c);
    this->facts.operations = operations * (unsymmetric() ? 2 : 1) * (options_.kind.is_complex ? 4 : 1);
}

// Row k of L and column k of U, with what they leave of the pivot. x_ holds the column of the matrix, z_
// the row where it is no mirror image.
template <class T>
T fixed_pivots<T>::eliminate(int64_t k, int64_t top, T pivot)
{
    for (; top < n_; ++top) {
        const int64_t j = path_[top];
        const T above = x_[j];
        x_[j] = T{};
        const int64_t end = next_[j]++;
        for (int64_t p = start_[j]; p < end; ++p)
            x_[index_[p]] -= l_[p] * above;
        T left;
        if (unsymmetric()) {
            left = z_[j] / diagonal_[j];
            z_[j] = T{};
            for (int64_t p = start_[j]; p < end; ++p)
                z_[index_[p]] -= left * u_[p];
            u_[end] = above;
        } else
            left = mirrored(above) / diagonal_[j];
        pivot -= left * above;
        l_[end] = left;
        index_[end] = k;
    }
    return pivot;
}

template <class T>
bool fixed_pivots<T>::accept(T original, T &pivot, double threshold)
{
    const double size = std::abs(pivot);
    if (options_.kind.positive_definite)
        return std::real(pivot) > 0 && std::isfinite(size);
    if (!std::isfinite(size))
        return false;
    if (size <= threshold && options_.change_pivots) {
        // A complex pivot keeps its direction: the routine sees its length.
        const bool on_real_line = std::is_floating_point_v<T> || conjugated();
        double changed = on_real_line ? static_cast<double>(std::real(pivot)) : size;
        if (perturb_pivot(on_real_line ? static_cast<double>(std::real(original)) : std::abs(original),
                          changed, threshold)) {
            using real = decltype(std::real(pivot));
            pivot = on_real_line || size == 0 ? T(static_cast<real>(changed))
                                              : pivot * static_cast<real>(changed / size);
            ++this->facts.changed_pivots;
        }
    }
    this->facts.positive += std::real(pivot) > 0;
    this->facts.negative += std::real(pivot) < 0;
    return pivot != T{};
}

template <class T>
int64_t fixed_pivots<T>::factor(const pattern &a, const T *values)
{
    auto &facts = this->facts;
    facts.positive = facts.negative = facts.changed_pivots = 0;
    facts.bad_row = -1;
    facts.begin_determinant(1);
    l_.resize(start_[n_]);
    index_.resize(start_[n_]);
    u_.resize(unsymmetric() ? start_[n_] : 0);
    diagonal_.assign(n_, T{});
    x_.assign(n_, T{});
    z_.assign(unsymmetric() ? n_ : 0, T{});
    next_.assign(start_.begin(), start_.end() - 1);
    seen_.assign(n_, -1);
    double largest = 0;
    for (int64_t k = 0; k < a.elements(); ++k)
        largest = std::max<double>(largest, std::abs(values[k]));

    const auto value_at = [values](int64_t place) {
        return place == INT64_MIN ? T{} : place < 0 ? conjugate_of(values[~place]) : values[place];
    };
    constexpr int64_t rows_between_reports = 4096;
    for (int64_t k = 0; k < n_; ++k) {
        if (k % rows_between_reports == rows_between_reports - 1 &&
            report_progress(0, k * 100 / n_, "factorization"))
            return XKL_PARDISO_INTERRUPTED;
        const int64_t top = reach(k);
        for (int64_t p = row_start_[k]; p < row_start_[k + 1]; ++p) {
            x_[row_column_[p]] = value_at(column_place_[p]);
            if (unsymmetric())
                z_[row_column_[p]] = value_at(row_place_[p]);
        }
        T original = diagonal_place_[k] < 0 ? T{} : values[diagonal_place_[k]];
        if (conjugated())
            original = std::real(original);
        diagonal_[k] = eliminate(k, top, original);
        if (conjugated())
            diagonal_[k] = std::real(diagonal_[k]);
        if (!accept(original, diagonal_[k], options_.pivot_threshold * largest)) {
            facts.bad_row = order_[k];
            return XKL_PARDISO_ZERO_PIVOT;
        }
        facts.multiply_determinant(std::complex<double>(diagonal_[k]));
    }
    if (options_.kind.positive_definite)
        facts.positive = n_;
    else if (unsymmetric() || (options_.kind.is_complex && !conjugated()))
        facts.positive = facts.negative = -1;
    return XKL_PARDISO_SUCCESS;
}

template <class T>
void fixed_pivots<T>::lower(bool transposed, T *y) const
{
    const std::vector<T> &factor = transposed && unsymmetric() ? u_ : l_;
    const bool scaled = transposed && unsymmetric(); // U^T has its pivots on the diagonal
    const bool conjugate = transposed && conjugated();
    for (int64_t j = 0; j < n_; ++j) {
        if (scaled)
            y[j] /= diagonal_[j];
        for (int64_t p = start_[j]; p < start_[j + 1]; ++p)
            y[index_[p]] -= (conjugate ? conjugate_of(factor[p]) : factor[p]) * y[j];
    }
}

template <class T>
void fixed_pivots<T>::upper(bool transposed, T *y) const
{
    const std::vector<T> &factor = transposed || !unsymmetric() ? l_ : u_;
    const bool scaled = !transposed && unsymmetric();
    const bool conjugate = !transposed && conjugated();
    for (int64_t j = n_; j-- > 0;) {
        for (int64_t p = start_[j]; p < start_[j + 1]; ++p)
            y[j] -= (conjugate ? conjugate_of(factor[p]) : factor[p]) * y[index_[p]];
        if (scaled)
            y[j] /= diagonal_[j];
    }
}

template <class T>
void fixed_pivots<T>::divide(T *y) const
{
    if (!unsymmetric())
        for (int64_t j = 0; j < n_; ++j)
            y[j] /= diagonal_[j];
}

template <class T>
int64_t fixed_pivots<T>::solve_by_parts(solve_part part, bool transposed, T *x, int64_t nrhs)
{
    std::vector<T> y(n_);
    const auto wanted = [part](solve_part one) { return part == solve_part::all || part == one; };
    for (int64_t column = 0; column < nrhs; ++column, x += n_) {
        for (int64_t i = 0; i < n_; ++i)
            y[i] = x[order_[i]];
        if (wanted(solve_part::lower))
            lower(transposed, y.data());
        if (wanted(solve_part::diagonal))
            divide(y.data());
        if (wanted(solve_part::upper))
            upper(transposed, y.data());
        for (int64_t i = 0; i < n_; ++i)
            x[order_[i]] = y[i];
    }
    return XKL_PARDISO_SUCCESS;
}

} // namespace xkl::core::solvers
