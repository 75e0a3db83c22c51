// The matrix of a direct solution as the engines see it: rows with ascending columns from 0, one element a
// place. The caller's arrays are read once, in the analysis, which notes where each element stands among
// the caller's values: another factorization only fetches the values.
#pragma once

#include "xkl_solver_types.h"

#include <complex>
#include <cstdint>
#include <optional>
#include <vector>

namespace xkl::core::solvers {

enum class symmetry { none, transposed, conjugated };

struct matrix_kind {
    symmetry form;
    bool positive_definite;
    bool is_complex;
    bool symmetric_places; // promised by the caller

    bool triangle() const { return form != symmetry::none; }
};

// What mtype says; nothing for a number that is no mtype.
std::optional<matrix_kind> kind_of(int64_t mtype);

// Compressed rows of the caller, or of blocks of order `block`, stored by columns where indices start at 1
// and by rows where they start at 0.
struct input_rows {
    int64_t n;
    const int64_t *ia, *ja;
    int64_t base;
    int64_t block = 1;
};

struct pattern {
    int64_t n = 0;
    bool triangle = false; // the upper one only
    std::vector<int64_t> start, column;
    std::vector<int64_t> source; // the element's place in the caller's array

    int64_t elements() const { return static_cast<int64_t>(column.size()); }
    bool diagonal_only() const;
};

// A fault of the input: a status of the matrix checker and what it tells. Rows and places count from 0,
// columns and row starts are as they stand in the arrays.
struct input_fault {
    int64_t status = XKL_SPARSE_CHECKER_SUCCESS;
    int64_t about[3] = {0, 0, 0};
    int64_t row = 0; // from 0
};

// The first fault of rows, in their order.
input_fault find_fault(const input_rows &input, int64_t structure, bool ordered);

// Brings input without such faults into form; false when an element comes twice. Rows need not be ordered.
bool read_pattern(const input_rows &input, bool triangle, pattern &result);

// The neighbours of each row in the graph of A + A^T, without the row itself.
struct graph {
    std::vector<int64_t> start, neighbour;
};
graph graph_of(const pattern &a);

// The first row that finds no column of its own when rows and columns are paired through elements of the
// matrix, from 0; -1 when all do, as they must unless the matrix is singular whatever its values are.
int64_t unpaired_row(const pattern &a);

template <class T>
T conjugate_of(T value)
{
    if constexpr (std::is_floating_point_v<T>)
        return value;
    else
        return std::conj(value);
}

} // namespace xkl::core::solvers
