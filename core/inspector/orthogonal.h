// Orthogonal factorization A P = Q R of real matrices, P reducing the fill of R: qr and its steps, on
// Eigen's SparseQR with an approximate minimum degree ordering of the columns.
//
// The factors stay with the handle. They are read by solves of any threads, and replaced by the routines
// that reorder and factorize, which the caller keeps apart from others.
#pragma once

#include "arguments.h"

#include <Eigen/OrderingMethods>
#include <Eigen/SparseQR>

namespace xkl::core {

namespace inspector {

template <class T>
struct orthogonal final : prepared {
    using sparse = Eigen::SparseMatrix<T, Eigen::ColMajor, int64_t>;
    using vector = Eigen::Matrix<T, Eigen::Dynamic, 1>;

    Eigen::SparseQR<sparse, Eigen::COLAMDOrdering<int64_t>> factors;
    sparse r; // its leading part of full rank
    bool analysed = false, factorized = false;

    void release() noexcept override { unmake(this); }
};

/// What a step made of throwing code answers. The library throws where it has no memory.
template <class Step>
sparse_status_t guarded(const Step &step)
{
    try {
        return step();
    } catch (const std::bad_alloc &) {
        return SPARSE_STATUS_ALLOC_FAILED;
    } catch (...) {
        return SPARSE_STATUS_INTERNAL_ERROR;
    }
}

/// The matrix by columns as the library wants it, other values in their places where they are given
template <class T>
sparse_status_t by_columns(const sparse_matrix &a, const T *other_values,
                           typename orthogonal<T>::sparse &out)
{
    written_rows<T> columns;
    action how;
    sparse_matrix replaced; // a look at A's arrays
    if (other_values) {
        replaced.type = a.type;
        replaced.form = a.form;
        replaced.base = a.base;
        replaced.layout = a.layout;
        replaced.block = a.block;
        replaced.rows = a.rows;
        replaced.cols = a.cols;
        replaced.nnz = a.nnz;
        replaced.starts = a.starts;
        replaced.ends = a.ends;
        replaced.minor = a.minor;
        replaced.values = const_cast<T *>(other_values);
    }
    const sparse_matrix &source = other_values ? replaced : a;
    if (const auto bad = action_of(source, SPARSE_OPERATION_TRANSPOSE, general_descr, how))
        return bad;
    if (const auto bad = write_out(source, how, columns))
        return bad;
    if (!sort_rows(columns))
        return SPARSE_STATUS_ALLOC_FAILED;
    const int64_t rows = columns.cols, cols = columns.rows;
    out.resize(rows, cols);
    out.reserve(columns.places());
    for (int64_t j = 0, places = 0; j < cols; ++j) {
        out.startVec(j);
        for (int64_t k = columns.starts[j]; k < columns.starts[j + 1]; ++k)
            if (k > columns.starts[j] && columns.columns[k] == columns.columns[k - 1])
                out.valuePtr()[places - 1] += columns.values[k];
            else {
                out.insertBackByOuterInner(j, columns.columns[k]) = columns.values[k];
                ++places;
            }
    }
    out.finalize();
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
orthogonal<T> *factors_of(const sparse_matrix &a)
{
    return static_cast<orthogonal<T> *>(a.factors);
}

template <class T>
sparse_status_t reorder(sparse_matrix &a)
{
    return guarded([&] {
        typename orthogonal<T>::sparse columns;
        if (const auto bad = by_columns<T>(a, nullptr, columns))
            return bad;
        auto *const made = make<orthogonal<T>>();
        if (!made)
            return SPARSE_STATUS_ALLOC_FAILED;
        release_all(a.factors);
        a.factors = made;
        made->factors.analyzePattern(columns);
        made->analysed = true;
        return SPARSE_STATUS_SUCCESS;
    });
}

template <class T>
sparse_status_t factorize(sparse_matrix &a, const T *other_values)
{
    orthogonal<T> *const by = factors_of<T>(a);
    if (!by || !by->analysed)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return guarded([&] {
        typename orthogonal<T>::sparse columns;
        by->factorized = false;
        if (const auto bad = by_columns<T>(a, other_values, columns))
            return bad;
        by->factors.factorize(columns);
        by->factorized = by->factors.info() == Eigen::Success;
        if (by->factorized)
            by->r = by->factors.matrixR().topLeftCorner(by->factors.rank(), by->factors.rank());
        return by->factorized ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_EXECUTION_FAILED;
    });
}

/// Calls step(column of b, column of x) for each right-hand side; x takes as many elements as the step
/// left.
template <class T, class Step>
sparse_status_t each_column(const dense<T> &x, int64_t rows_x, const dense<const T> &b, int64_t rows_b,
                            int64_t columns, const Step &step)
{
    return guarded([&] {
        Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic> made(rows_x, columns);
        typename orthogonal<T>::vector right(rows_b);
        for (int64_t c = 0; c < columns; ++c) {
            for (int64_t i = 0; i < rows_b; ++i)
                right[i] = b(i, c);
            made.col(c) = step(right);
        }
        for (int64_t c = 0; c < columns; ++c)
            for (int64_t i = 0; i < rows_x; ++i)
                x(i, c) = made(i, c);
        return SPARSE_STATUS_SUCCESS;
    });
}

/// P inv(R) v, or inv(R') P' v: of R's leading part of full rank, zeros elsewhere
template <class T>
typename orthogonal<T>::vector solve_with_r(const orthogonal<T> &by,
                                            const typename orthogonal<T>::vector &v, bool transposed)
{
    using vector = typename orthogonal<T>::vector;
    const int64_t rank = by.factors.rank();
    const auto r = by.r.template triangularView<Eigen::Upper>();
    vector full = vector::Zero(by.factors.cols());
    if (transposed) {
        const vector moved = by.factors.colsPermutation().inverse() * v;
        full.head(rank) = r.transpose().solve(moved.head(rank));
        return full;
    }
    full.head(rank) = r.solve(v.head(rank));
    return by.factors.colsPermutation() * full;
}

/// What the steps after the factorization ask of their arguments
template <class T>
sparse_status_t factors_usable(const sparse_matrix *a, sparse_operation_t operation, sparse_layout_t layout,
                               int64_t columns, const T *x, int64_t rows_x, int64_t ldx, const T *b,
                               int64_t rows_b, int64_t ldb)
{
    if (!is_operation(operation) || columns < 0 || !x || !b || !fits(layout, rows_x, columns, ldx) ||
        !fits(layout, rows_b, columns, ldb))
        return SPARSE_STATUS_INVALID_VALUE;
    return a->factors && factors_of<T>(*a)->factorized ? SPARSE_STATUS_SUCCESS
                                                       : SPARSE_STATUS_NOT_INITIALIZED;
}

} // namespace inspector

inline sparse_status_t xkl_sparse_set_qr_hint(const sparse_matrix *a, sparse_qr_hint_t hint)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return inspector::valid(hint == SPARSE_QR_WITH_PIVOTS); // the way in which it is always done
}

inline sparse_status_t xkl_sparse_qr_reorder(sparse_matrix *a, matrix_descr descr)
{
    using namespace inspector;
    if (const auto bad = usable(a))
        return bad;
    part of;
    if (const auto bad = part_of(*a, descr, of))
        return bad;
    if (!of.whole() || a->type == 'C' || a->type == 'Z')
        return SPARSE_STATUS_NOT_SUPPORTED;
    return a->type == 'S' ? reorder<float>(*a) : reorder<double>(*a);
}

template <class T>
sparse_status_t xkl_sparse_qr_factorize(sparse_matrix *a, const T *other_values)
{
    const auto bad = inspector::usable_as<T>(a);
    return bad ? bad : inspector::factorize<T>(*a, other_values);
}

template <class T>
sparse_status_t xkl_sparse_qr_qmult(sparse_operation_t operation, const sparse_matrix *a,
                                    sparse_layout_t layout, int64_t columns, T *x, int64_t ldx, const T *b,
                                    int64_t ldb)
{
    using namespace inspector;
    if (const auto bad = usable_as<T>(a))
        return bad;
    const int64_t rows = a->total_rows();
    if (const auto bad = factors_usable(a, operation, layout, columns, x, rows, ldx, b, rows, ldb))
        return bad;
    const orthogonal<T> &by = *factors_of<T>(*a);
    using vector = typename orthogonal<T>::vector;
    return each_column<T>({x, layout, ldx}, rows, {b, layout, ldb}, rows, columns,
                          [&](const vector &right) {
                              return operation == SPARSE_OPERATION_NON_TRANSPOSE
                                         ? vector(by.factors.matrixQ() * right)
                                         : vector(by.factors.matrixQ().transpose() * right);
                          });
}

template <class T>
sparse_status_t xkl_sparse_qr_rsolve(sparse_operation_t operation, const sparse_matrix *a,
                                     sparse_layout_t layout, int64_t columns, T *x, int64_t ldx, const T *b,
                                     int64_t ldb)
{
    using namespace inspector;
    if (const auto bad = usable_as<T>(a))
        return bad;
    const int64_t n = a->total_cols(), read = std::min(n, a->total_rows());
    const bool transposed = operation != SPARSE_OPERATION_NON_TRANSPOSE;
    const int64_t rows_b = transposed ? n : read;
    if (const auto bad = factors_usable(a, operation, layout, columns, x, n, ldx, b, rows_b, ldb))
        return bad;
    const orthogonal<T> &by = *factors_of<T>(*a);
    return each_column<T>({x, layout, ldx}, n, {b, layout, ldb}, rows_b, columns,
                          [&](const auto &right) { return solve_with_r(by, right, transposed); });
}

/// Least squares with A; with its transpose, where A has at least as many rows as columns, the shortest
/// solution
template <class T>
sparse_status_t xkl_sparse_qr_solve(sparse_operation_t operation, sparse_matrix *a, const T *other_values,
                                    sparse_layout_t layout, int64_t columns, T *x, int64_t ldx, const T *b,
                                    int64_t ldb)
{
    using namespace inspector;
    using vector = typename orthogonal<T>::vector;
    if (const auto bad = first_failure({usable_as<T>(a), valid(is_operation(operation))}))
        return bad;
    const bool transposed = operation != SPARSE_OPERATION_NON_TRANSPOSE;
    const int64_t rows_b = rows_under(*a, operation), rows_x = cols_under(*a, operation);
    if (const auto bad = factors_usable(a, operation, layout, columns, x, rows_x, ldx, b, rows_b, ldb))
        return bad;
    if (transposed && rows_x < rows_b)
        return SPARSE_STATUS_NOT_SUPPORTED;
    if (other_values)
        if (const auto bad = factorize<T>(*a, other_values))
            return bad;
    const orthogonal<T> &by = *factors_of<T>(*a);
    return each_column<T>({x, layout, ldx}, rows_x, {b, layout, ldb}, rows_b, columns,
                          [&](const vector &right) {
                              if (!transposed) {
                                  const vector turned = by.factors.matrixQ().transpose() * right;
                                  return solve_with_r<T>(by, turned, false);
                              }
                              vector full = vector::Zero(rows_x);
                              full.head(rows_b) = solve_with_r<T>(by, right, true);
                              return vector(by.factors.matrixQ() * full);
                          });
}

template <class T>
sparse_status_t xkl_sparse_qr(sparse_operation_t operation, sparse_matrix *a, matrix_descr descr,
                              sparse_layout_t layout, int64_t columns, T *x, int64_t ldx, const T *b,
                              int64_t ldb)
{
    using namespace inspector;
    if (const auto bad = first_failure({
            usable_as<T>(a),
            valid(is_operation(operation)),
            valid(columns >= 0 && x && b),
        }))
        return bad;
    if (!fits(layout, cols_under(*a, operation), columns, ldx) ||
        !fits(layout, rows_under(*a, operation), columns, ldb))
        return SPARSE_STATUS_INVALID_VALUE;
    if (const auto bad = xkl_sparse_qr_reorder(a, descr))
        return bad;
    if (const auto bad = factorize<T>(*a, nullptr))
        return bad;
    return xkl_sparse_qr_solve<T>(operation, a, nullptr, layout, columns, x, ldx, b, ldb);
}

} // namespace xkl::core
