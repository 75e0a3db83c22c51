// Unsymmetric factorization by Eigen: supernodes, and in each column the largest element as the pivot.
#pragma once

#include "solvers/engine.h"

#include <Eigen/SparseLU>

#include <algorithm>
#include <cmath>
#include <limits>

namespace xkl::core::solvers {

template <class T>
class row_pivots final : public engine<T> {
  public:
    int64_t analyse(const pattern &a, const T *, const std::vector<int64_t> &order) override;
    int64_t factor(const pattern &a, const T *values) override;
    int64_t solve(bool transposed, T *x, int64_t nrhs) override;

  private:
    using matrix = Eigen::SparseMatrix<T, Eigen::ColMajor, int64_t>;
    using vector = Eigen::Matrix<T, Eigen::Dynamic, 1>;

    // The order is in the matrix already. Tells of the pivots, which the library keeps to itself.
    class factors : public Eigen::SparseLU<matrix, Eigen::NaturalOrdering<int64_t>> {
      public:
        double look_at_pivots(factor_facts &facts) const
        {
            double smallest = std::numeric_limits<double>::infinity();
            facts.begin_determinant(this->rowsPermutation().determinant() *
                                    this->colsPermutation().determinant());
            for (int64_t j = 0; j < this->cols(); ++j)
                for (typename factors::SCMatrix::InnerIterator it(this->m_Lstore, j); it; ++it)
                    if (it.index() == j) {
                        smallest = std::min<double>(smallest, std::abs(it.value()));
                        facts.multiply_determinant(std::complex<double>(it.value()));
                        break;
                    }
            return smallest;
        }
    };

    void use_order_sign()
    {
        const Eigen::PermutationMatrix<Eigen::Dynamic, Eigen::Dynamic, int64_t> order(
            Eigen::Map<const Eigen::Matrix<int64_t, Eigen::Dynamic, 1>>(order_.data(), permuted_.cols()));
        this->facts.determinant *= static_cast<double>(order.determinant());
    }

    std::vector<int64_t> order_; // of the columns
    std::vector<int64_t> source_;
    matrix permuted_;
    factors factors_;
};

template <class T>
int64_t row_pivots<T>::analyse(const pattern &a, const T *, const std::vector<int64_t> &order)
{
    order_ = order;
    std::vector<int64_t> position(a.n), next(a.n + 1, 0);
    for (int64_t i = 0; i < a.n; ++i)
        position[order[i]] = i;
    for (const int64_t column : a.column)
        ++next[position[column] + 1];
    for (int64_t j = 0; j < a.n; ++j)
        next[j + 1] += next[j];
    permuted_.resize(a.n, a.n);
    permuted_.resizeNonZeros(a.elements());
    source_.resize(a.elements());
    std::copy(next.begin(), next.end(), permuted_.outerIndexPtr());
    for (int64_t row = 0; row < a.n; ++row)
        for (int64_t k = a.start[row]; k < a.start[row + 1]; ++k) {
            const int64_t place = next[position[a.column[k]]]++;
            permuted_.innerIndexPtr()[place] = row;
            source_[place] = k;
        }
    std::fill_n(permuted_.valuePtr(), a.elements(), T{});
    factors_.analyzePattern(permuted_);
    return XKL_PARDISO_SUCCESS;
}

// A pivot no larger than the rounding of the largest element is taken for a zero.
template <class T>
int64_t row_pivots<T>::factor(const pattern &a, const T *values)
{
    double largest = 0;
    for (int64_t k = 0; k < a.elements(); ++k) {
        permuted_.valuePtr()[k] = values[source_[k]];
        largest = std::max<double>(largest, std::abs(values[k]));
    }
    if (!std::isfinite(largest))
        return XKL_PARDISO_ZERO_PIVOT;
    factors_.factorize(permuted_);
    using real = typename Eigen::NumTraits<T>::Real;
    if (factors_.info() != Eigen::Success ||
        !(factors_.look_at_pivots(this->facts) > 4 * std::numeric_limits<real>::epsilon() * largest))
        return XKL_PARDISO_ZERO_PIVOT;
    use_order_sign();
    this->facts.nonzeros = factors_.nnzL() + factors_.nnzU();
    this->facts.elements_of_memory = this->facts.nonzeros;
    return XKL_PARDISO_SUCCESS;
}

template <class T>
int64_t row_pivots<T>::solve(bool transposed, T *x, int64_t nrhs)
{
    const int64_t n = permuted_.rows();
    vector result(n);
    for (int64_t column = 0; column < nrhs; ++column, x += n) {
        const Eigen::Map<vector> right(x, n);
        if (!transposed) {
            result = factors_.solve(right);
            for (int64_t i = 0; i < n; ++i)
                x[order_[i]] = result[i];
        } else {
            vector permuted(n);
            for (int64_t i = 0; i < n; ++i)
                permuted[i] = x[order_[i]];
            result = factors_.transpose().solve(permuted);
            std::copy_n(result.data(), n, x);
        }
    }
    return XKL_PARDISO_SUCCESS;
}

} // namespace xkl::core::solvers
