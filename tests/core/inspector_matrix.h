// Random sparse matrices for the tests of the routines on handles: the same matrix in every storage, and
// dense computations in extended precision to compare with.
#pragma once

#include "element_types.h"

#include "xkl_service.h"
#include "xkl_spblas.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace inspector_test {

using namespace element_types;

#define SPARSE_ROUTINE(name)                                                                               \
    template <class T>                                                                                     \
    constexpr auto name = inspector_test::pick<T>(xkl_sparse_s_##name, xkl_sparse_d_##name,                \
                                                  xkl_sparse_c_##name, xkl_sparse_z_##name)

SPARSE_ROUTINE(create_coo);
SPARSE_ROUTINE(create_csr);
SPARSE_ROUTINE(create_csc);
SPARSE_ROUTINE(create_bsr);
SPARSE_ROUTINE(export_coo);
SPARSE_ROUTINE(export_csr);
SPARSE_ROUTINE(export_csc);
SPARSE_ROUTINE(export_bsr);

/// A dense matrix to compute with
struct grid {
    int64_t rows = 0, cols = 0;
    std::vector<wide> elements;

    grid(int64_t m, int64_t n) : rows(m), cols(n), elements(static_cast<size_t>(m * n)) {}
    wide &operator()(int64_t i, int64_t j) { return elements[static_cast<size_t>(i * cols + j)]; }
    wide operator()(int64_t i, int64_t j) const { return elements[static_cast<size_t>(i * cols + j)]; }
};

inline grid operator*(const grid &a, const grid &b)
{
    grid c(a.rows, b.cols);
    for (int64_t i = 0; i < a.rows; ++i)
        for (int64_t k = 0; k < a.cols; ++k)
            for (int64_t j = 0; j < b.cols; ++j)
                c(i, j) += a(i, k) * b(k, j);
    return c;
}

inline grid under(const grid &a, sparse_operation_t operation)
{
    if (operation == SPARSE_OPERATION_NON_TRANSPOSE)
        return a;
    grid result(a.cols, a.rows);
    for (int64_t i = 0; i < a.rows; ++i)
        for (int64_t j = 0; j < a.cols; ++j)
            result(j, i) = operation == SPARSE_OPERATION_TRANSPOSE ? a(i, j) : std::conj(a(i, j));
    return result;
}

/// What a description makes of the stored elements; b: order of the blocks that block kinds mean
inline grid described(const grid &a, const matrix_descr &descr, int64_t b = 1)
{
    if (descr.type == SPARSE_MATRIX_TYPE_GENERAL)
        return a;
    const bool blocks = descr.type == SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR ||
                        descr.type == SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL;
    const bool diagonal =
        descr.type == SPARSE_MATRIX_TYPE_DIAGONAL || descr.type == SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL;
    const int64_t order = blocks ? b : 1;
    grid result(a.rows, a.cols);
    for (int64_t i = 0; i < a.rows; ++i)
        for (int64_t j = 0; j < a.cols; ++j) {
            const int64_t side = i / order - j / order;
            if (side == 0)
                result(i, j) = descr.diag == SPARSE_DIAG_UNIT               ? wide(i == j)
                               : descr.type == SPARSE_MATRIX_TYPE_HERMITIAN ? wide(a(i, j).real())
                                                                            : a(i, j);
            else if (!diagonal && (side > 0) == (descr.mode == SPARSE_FILL_MODE_LOWER)) {
                result(i, j) = a(i, j);
                if (descr.type == SPARSE_MATRIX_TYPE_SYMMETRIC)
                    result(j, i) = a(i, j);
                if (descr.type == SPARSE_MATRIX_TYPE_HERMITIAN)
                    result(j, i) = std::conj(a(i, j));
            }
        }
    return result;
}

inline std::mt19937 &engine()
{
    static std::mt19937 only(7);
    return only;
}

template <class T>
T random_element()
{
    std::uniform_real_distribution<real_of<T>> part(-1, 1);
    const auto re = part(engine()), im = part(engine());
    return scalar<T>(re, im);
}

template <class T>
std::vector<T> random_vector(int64_t length)
{
    std::vector<T> result(static_cast<size_t>(length));
    for (T &each : result)
        each = random_element<T>();
    return result;
}

/// Elements with their places
template <class T>
using elements_of = std::map<std::pair<int64_t, int64_t>, T>;

/// About two elements in five, the third row and the last column empty unless the diagonal must be there
template <class T>
elements_of<T> random_elements(int64_t rows, int64_t cols, bool with_diagonal)
{
    elements_of<T> result;
    for (int64_t i = 0; i < rows; ++i)
        for (int64_t j = 0; j < cols; ++j) {
            const T value = random_element<T>();
            if (with_diagonal && i == j)
                result[{i, j}] = value + T(static_cast<real_of<T>>(4));
            else if (i != 2 && j != cols - 1 && engine()() % 5 < 2)
                result[{i, j}] = value;
        }
    return result;
}

struct stored_as {
    enum { coo, csr, csc, bsr } form;
    sparse_index_base_t base;
    int64_t block = 1;
    sparse_layout_t layout = SPARSE_LAYOUT_ROW_MAJOR;
};

inline std::string name_of(const stored_as &how)
{
    static const char *const names[] = {"coo", "csr", "csc", "bsr"};
    return std::string(names[how.form]) + " base " + std::to_string(how.base) + " block " +
           std::to_string(how.block) + " layout " + std::to_string(how.layout);
}

/// Every storage, in both bases and layouts of blocks
inline std::vector<stored_as> all_storages()
{
    std::vector<stored_as> result;
    for (const auto base : {SPARSE_INDEX_BASE_ZERO, SPARSE_INDEX_BASE_ONE}) {
        for (const auto form : {stored_as::coo, stored_as::csr, stored_as::csc})
            result.push_back({form, base});
        for (const auto layout : {SPARSE_LAYOUT_ROW_MAJOR, SPARSE_LAYOUT_COLUMN_MAJOR})
            result.push_back({stored_as::bsr, base, 3, layout});
    }
    return result;
}

/// A handle over arrays of its own: unsorted, with a gap before each line, and places that are stored twice
/// in COO
template <class T>
class sparse {
  public:
    sparse(int64_t m, int64_t n, const elements_of<T> &elements, const stored_as &how)
        : rows(m), cols(n), how_(how), dense_(m, n)
    {
        for (const auto &[place, value] : elements)
            dense_(place.first, place.second) = widen(value);
        sparse_status_t made;
        if (how.form == stored_as::coo)
            made = store_elements(elements);
        else
            made = store_lines(elements);
        EXPECT_EQ(made, SPARSE_STATUS_SUCCESS);
    }
    ~sparse() { EXPECT_EQ(xkl_sparse_destroy(handle), SPARSE_STATUS_SUCCESS); }
    sparse(const sparse &) = delete;
    sparse &operator=(const sparse &) = delete;

    /// op(A) as described
    grid dense(sparse_operation_t operation, const matrix_descr &descr) const
    {
        return under(described(dense_, descr, how_.block), operation);
    }
    const grid &dense() const { return dense_; }

    sparse_matrix_t handle = nullptr;
    int64_t rows, cols;
    std::vector<int64_t> starts, ends, minor;
    std::vector<T> values;

  private:
    sparse_status_t store_elements(const elements_of<T> &elements)
    {
        std::vector<std::pair<std::pair<int64_t, int64_t>, T>> list;
        const T half = scalar<T>(.5, 0);
        for (const auto &[place, value] : elements) {
            const bool twice = engine()() % 4 == 0;
            list.push_back({place, twice ? value * half : value});
            if (twice)
                list.push_back({place, value * half});
        }
        std::shuffle(list.begin(), list.end(), engine());
        for (const auto &[place, value] : list) {
            starts.push_back(place.first + how_.base);
            minor.push_back(place.second + how_.base);
            values.push_back(value);
        }
        return create_coo<T>(&handle, how_.base, rows, cols, static_cast<int64_t>(list.size()),
                             starts.data(), minor.data(), values.data());
    }

    sparse_status_t store_lines(const elements_of<T> &elements)
    {
        const int64_t b = how_.block;
        const bool turned = how_.form == stored_as::csc;
        std::map<int64_t, std::map<int64_t, std::vector<T>>> lines;
        for (const auto &[place, value] : elements) {
            const int64_t i = turned ? place.second : place.first, j = turned ? place.first : place.second;
            auto &block = lines[i / b][j / b];
            block.resize(static_cast<size_t>(b * b));
            const int64_t r = i % b, c = j % b;
            block[static_cast<size_t>(how_.layout == SPARSE_LAYOUT_ROW_MAJOR ? r * b + c : c * b + r)] =
                value;
        }
        const int64_t count = (turned ? cols : rows) / b;
        for (int64_t i = 0; i < count; ++i) {
            minor.push_back(-99); // a gap
            values.insert(values.end(), static_cast<size_t>(b * b), scalar<T>(1e30, 0));
            starts.push_back(static_cast<int64_t>(minor.size()) + how_.base);
            std::vector<int64_t> order;
            for (const auto &each : lines[i])
                order.push_back(each.first);
            std::shuffle(order.begin(), order.end(), engine());
            for (const int64_t j : order) {
                minor.push_back(j + how_.base);
                values.insert(values.end(), lines[i][j].begin(), lines[i][j].end());
            }
            ends.push_back(static_cast<int64_t>(minor.size()) + how_.base);
        }
        if (how_.form == stored_as::bsr)
            return create_bsr<T>(&handle, how_.base, how_.layout, rows / b, cols / b, b, starts.data(),
                                 ends.data(), minor.data(), values.data());
        return (turned ? create_csc<T> : create_csr<T>)(&handle, how_.base, rows, cols, starts.data(),
                                                        ends.data(), minor.data(), values.data());
    }

    stored_as how_;
    grid dense_;
};

/// A description of each kind that fits the storage
inline std::vector<matrix_descr> descriptions(bool square, bool blocks)
{
    std::vector<matrix_descr> result{
        {SPARSE_MATRIX_TYPE_GENERAL, SPARSE_FILL_MODE_FULL, SPARSE_DIAG_NON_UNIT}};
    std::vector<sparse_matrix_type_t> kinds{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_MATRIX_TYPE_DIAGONAL};
    if (square)
        kinds.insert(kinds.end(), {SPARSE_MATRIX_TYPE_SYMMETRIC, SPARSE_MATRIX_TYPE_HERMITIAN});
    if (blocks)
        kinds.insert(kinds.end(), {SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR, SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL});
    for (const auto kind : kinds)
        for (const auto mode : {SPARSE_FILL_MODE_LOWER, SPARSE_FILL_MODE_UPPER})
            for (const auto diag : {SPARSE_DIAG_NON_UNIT, SPARSE_DIAG_UNIT})
                result.push_back({kind, mode, diag});
    return result;
}

constexpr sparse_operation_t operations[] = {SPARSE_OPERATION_NON_TRANSPOSE, SPARSE_OPERATION_TRANSPOSE,
                                             SPARSE_OPERATION_CONJUGATE_TRANSPOSE};
constexpr sparse_layout_t layouts[] = {SPARSE_LAYOUT_ROW_MAJOR, SPARSE_LAYOUT_COLUMN_MAJOR};
constexpr matrix_descr general{SPARSE_MATRIX_TYPE_GENERAL, SPARSE_FILL_MODE_FULL, SPARSE_DIAG_NON_UNIT};

/// Relative to numbers of order one
template <class T>
void expect_near(T found, wide expected, double units, const std::string &what)
{
    const long double error = std::abs(widen(found) - expected) / (1 + std::abs(expected));
    ASSERT_LE(error, units * std::numeric_limits<real_of<T>>::epsilon()) << what;
}

/// A dense operand, its leading dimension larger than need be
template <class T>
struct operand {
    int64_t rows, cols, ld;
    sparse_layout_t layout;
    std::vector<T> elements;

    operand(int64_t m, int64_t n, sparse_layout_t how)
        : rows(m), cols(n), ld((how == SPARSE_LAYOUT_ROW_MAJOR ? n : m) + 2), layout(how),
          elements(random_vector<T>(ld * (how == SPARSE_LAYOUT_ROW_MAJOR ? m : n) + 2))
    {
    }
    T &operator()(int64_t i, int64_t j)
    {
        return elements[static_cast<size_t>(layout == SPARSE_LAYOUT_ROW_MAJOR ? i * ld + j : j * ld + i)];
    }
    T *data() { return elements.data(); }
    grid dense()
    {
        grid result(rows, cols);
        for (int64_t i = 0; i < rows; ++i)
            for (int64_t j = 0; j < cols; ++j)
                result(i, j) = widen((*this)(i, j));
        return result;
    }
};

/// All elements as expected; what lies between the lines unchanged
template <class T>
void expect_like(operand<T> &found, const operand<T> &before, const grid &expected, double units,
                 const std::string &what)
{
    operand<T> rest = found;
    for (int64_t i = 0; i < found.rows; ++i)
        for (int64_t j = 0; j < found.cols; ++j) {
            expect_near(found(i, j), expected(i, j), units,
                        what + " at " + std::to_string(i) + ", " + std::to_string(j));
            rest(i, j) = operand<T>(before)(i, j);
        }
    EXPECT_EQ(rest.elements, before.elements) << what << ": wrote beside the matrix";
}

/// The matrix that compressed rows hold, and whether they are in order without doubles
template <class T>
grid rows_of(sparse_matrix_t a, bool *ordered = nullptr)
{
    sparse_index_base_t base{};
    int64_t rows = 0, cols = 0, *starts = nullptr, *ends = nullptr, *minor = nullptr;
    T *values = nullptr;
    EXPECT_EQ(export_csr<T>(a, &base, &rows, &cols, &starts, &ends, &minor, &values),
              SPARSE_STATUS_SUCCESS);
    grid result(rows, cols);
    for (int64_t i = 0; i < rows; ++i)
        for (int64_t k = starts[i] - base; k < ends[i] - base; ++k) {
            result(i, minor[k] - base) += widen(values[k]);
            if (ordered && k > starts[i] - base && minor[k] <= minor[k - 1])
                *ordered = false;
        }
    return result;
}

template <class T>
void expect_rows(sparse_matrix_t a, const grid &expected, double units, const std::string &what)
{
    bool ordered = true;
    const grid found = rows_of<T>(a, &ordered);
    EXPECT_TRUE(ordered) << what;
    ASSERT_EQ(found.rows, expected.rows) << what;
    ASSERT_EQ(found.cols, expected.cols) << what;
    for (size_t i = 0; i < found.elements.size(); ++i)
        expect_near(T(scalar<T>(static_cast<double>(found.elements[i].real()),
                                static_cast<double>(found.elements[i].imag()))),
                    expected.elements[i], units, what);
}

} // namespace inspector_test
