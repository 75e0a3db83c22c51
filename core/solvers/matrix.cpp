// Reading, checking and judging the places of a sparse matrix.
#include "solvers/matrix.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace xkl::core::solvers {

std::optional<matrix_kind> kind_of(int64_t mtype)
{
    switch (mtype) {
    case XKL_PARDISO_REAL_STRUCTURALLY_SYMMETRIC:
        return matrix_kind{symmetry::none, false, false, true};
    case XKL_PARDISO_REAL_POSITIVE_DEFINITE:
        return matrix_kind{symmetry::transposed, true, false, true};
    case XKL_PARDISO_REAL_INDEFINITE:
        return matrix_kind{symmetry::transposed, false, false, true};
    case XKL_PARDISO_COMPLEX_STRUCTURALLY_SYMMETRIC:
        return matrix_kind{symmetry::none, false, true, true};
    case XKL_PARDISO_HERMITIAN_POSITIVE_DEFINITE:
        return matrix_kind{symmetry::conjugated, true, true, true};
    case XKL_PARDISO_HERMITIAN_INDEFINITE:
        return matrix_kind{symmetry::conjugated, false, true, true};
    case XKL_PARDISO_COMPLEX_SYMMETRIC:
        return matrix_kind{symmetry::transposed, false, true, true};
    case XKL_PARDISO_REAL_UNSYMMETRIC:
        return matrix_kind{symmetry::none, false, false, false};
    case XKL_PARDISO_COMPLEX_UNSYMMETRIC:
        return matrix_kind{symmetry::none, false, true, false};
    default:
        return std::nullopt;
    }
}

bool pattern::diagonal_only() const
{
    for (int64_t row = 0; row < n; ++row)
        for (int64_t k = start[row]; k < start[row + 1]; ++k)
            if (column[k] != row)
                return false;
    return true;
}

namespace {

bool has_element(const input_rows &input, int64_t row, int64_t column, bool ordered)
{
    const int64_t *from = input.ja + input.ia[row] - input.base;
    const int64_t *to = input.ja + input.ia[row + 1] - input.base;
    const int64_t wanted = column + input.base;
    return ordered ? std::binary_search(from, to, wanted) : std::find(from, to, wanted) != to;
}

input_fault fault_at(int64_t status, int64_t row, int64_t first, int64_t second, int64_t third)
{
    return {status, {first, second, third}, row};
}

input_fault asymmetry(const input_rows &input, bool ordered)
{
    for (int64_t row = 0; row < input.n; ++row)
        for (int64_t place = input.ia[row]; place < input.ia[row + 1]; ++place) {
            const int64_t column = input.ja[place - input.base] - input.base;
            if (!has_element(input, column, row, ordered))
                return fault_at(XKL_SPARSE_CHECKER_NONTRIANGULAR, row, place - input.base,
                                column + input.base, row);
        }
    return {};
}

} // namespace

input_fault find_fault(const input_rows &input, int64_t structure, bool ordered)
{
    const int64_t base = input.base;
    if (input.ia[0] != base)
        return fault_at(XKL_SPARSE_CHECKER_NON_MONOTONIC, 0, 0, input.ia[0], input.ia[1]);
    for (int64_t row = 0; row < input.n; ++row)
        if (input.ia[row + 1] < input.ia[row])
            return fault_at(XKL_SPARSE_CHECKER_NON_MONOTONIC, row, row, input.ia[row], input.ia[row + 1]);
    for (int64_t row = 0; row < input.n; ++row)
        for (int64_t place = input.ia[row]; place < input.ia[row + 1]; ++place) {
            const int64_t column = input.ja[place - base];
            if (column < base || column >= input.n + base)
                return fault_at(XKL_SPARSE_CHECKER_OUT_OF_RANGE, row, place - base, column, row);
            if ((structure == XKL_UPPER_TRIANGULAR && column < row + base) ||
                (structure == XKL_LOWER_TRIANGULAR && column > row + base))
                return fault_at(XKL_SPARSE_CHECKER_NONTRIANGULAR, row, place - base, column, row);
            if (ordered && place > input.ia[row] && column <= input.ja[place - 1 - base])
                return fault_at(XKL_SPARSE_CHECKER_NONORDERED, row, place - base,
                                input.ja[place - 1 - base], column);
        }
    return structure == XKL_STRUCTURAL_SYMMETRIC ? asymmetry(input, ordered) : input_fault{};
}

namespace {

// Appends row `inner` of a row of blocks.
void append_row(const input_rows &input, int64_t block_row, int64_t inner, bool triangle, pattern &result)
{
    const int64_t b = input.block;
    const int64_t row = block_row * b + inner;
    for (int64_t place = input.ia[block_row]; place < input.ia[block_row + 1]; ++place) {
        const int64_t block_column = input.ja[place - input.base] - input.base;
        for (int64_t j = 0; j < b; ++j) {
            const int64_t column = block_column * b + j;
            if (triangle && column < row)
                continue;
            const int64_t within = input.base == 1 ? j * b + inner : inner * b + j;
            result.column.push_back(column);
            result.source.push_back((place - input.base) * b * b + within);
        }
    }
}

// Sorts the last row; false when it has a column twice.
bool sort_row(pattern &result, int64_t from)
{
    const auto first = result.column.begin() + from;
    if (!std::is_sorted(first, result.column.end())) {
        std::vector<std::pair<int64_t, int64_t>> row;
        for (int64_t k = from; k < result.elements(); ++k)
            row.emplace_back(result.column[k], result.source[k]);
        std::sort(row.begin(), row.end());
        for (int64_t k = from; k < result.elements(); ++k)
            std::tie(result.column[k], result.source[k]) = row[k - from];
    }
    return std::adjacent_find(first, result.column.end()) == result.column.end();
}

} // namespace

bool read_pattern(const input_rows &input, bool triangle, pattern &result)
{
    result = {};
    result.n = input.n * input.block;
    result.triangle = triangle;
    const int64_t elements = (input.ia[input.n] - input.base) * input.block * input.block;
    result.start.reserve(result.n + 1);
    result.column.reserve(elements);
    result.source.reserve(elements);
    result.start.push_back(0);
    for (int64_t block_row = 0; block_row < input.n; ++block_row)
        for (int64_t inner = 0; inner < input.block; ++inner) {
            append_row(input, block_row, inner, triangle, result);
            if (!sort_row(result, result.start.back()))
                return false;
            result.start.push_back(result.elements());
        }
    return true;
}

graph graph_of(const pattern &a)
{
    graph both;
    both.start.assign(a.n + 1, 0);
    for (int64_t row = 0; row < a.n; ++row)
        for (int64_t k = a.start[row]; k < a.start[row + 1]; ++k)
            if (a.column[k] != row) {
                ++both.start[row + 1];
                ++both.start[a.column[k] + 1];
            }
    std::partial_sum(both.start.begin(), both.start.end(), both.start.begin());
    both.neighbour.resize(both.start[a.n]);
    std::vector<int64_t> next(both.start.begin(), both.start.end() - 1);
    for (int64_t row = 0; row < a.n; ++row)
        for (int64_t k = a.start[row]; k < a.start[row + 1]; ++k)
            if (a.column[k] != row) {
                both.neighbour[next[row]++] = a.column[k];
                both.neighbour[next[a.column[k]]++] = row;
            }
    if (a.triangle)
        return both;

    // An element and its mirror image are one edge.
    int64_t kept = 0, from = 0;
    for (int64_t row = 0; row < a.n; ++row) {
        const int64_t to = both.start[row + 1];
        std::sort(both.neighbour.begin() + from, both.neighbour.begin() + to);
        const int64_t first = kept;
        for (int64_t k = from; k < to; ++k)
            if (kept == first || both.neighbour[kept - 1] != both.neighbour[k])
                both.neighbour[kept++] = both.neighbour[k];
        both.start[row] = first;
        from = to;
    }
    both.start[a.n] = kept;
    both.neighbour.resize(kept);
    return both;
}

namespace {

// Pairs rows with columns through alternating paths, found in depth without recursion.
class pairing {
  public:
    pairing(const std::vector<int64_t> &start, const std::vector<int64_t> &column, int64_t n)
        : start_(start), column_(column), row_of_(n, -1), free_(start.begin(), start.end() - 1), next_(n),
          seen_by_(n, -1)
    {
    }

    bool take(int64_t column, int64_t row) { return row_of_[column] < 0 && (row_of_[column] = row, true); }

    bool augment(int64_t root)
    {
        path_.assign(1, root);
        taken_.clear();
        next_[root] = start_[root];
        while (!path_.empty()) {
            const int64_t row = path_.back();
            if (const int64_t column = free_column(row); column >= 0) {
                row_of_[column] = row;
                for (size_t step = taken_.size(); step-- > 0;)
                    row_of_[taken_[step]] = path_[step];
                return true;
            }
            if (!go_on(row, root)) {
                path_.pop_back();
                if (!taken_.empty())
                    taken_.pop_back();
            }
        }
        return false;
    }

  private:
    int64_t free_column(int64_t row)
    {
        for (int64_t &k = free_[row]; k < start_[row + 1]; ++k)
            if (row_of_[column_[k]] < 0)
                return column_[k];
        return -1;
    }

    bool go_on(int64_t row, int64_t root)
    {
        for (int64_t &k = next_[row]; k < start_[row + 1]; ++k) {
            const int64_t column = column_[k];
            if (seen_by_[column] == root)
                continue;
            seen_by_[column] = root;
            taken_.push_back(column);
            path_.push_back(row_of_[column]);
            next_[path_.back()] = start_[path_.back()];
            ++k;
            return true;
        }
        return false;
    }

    const std::vector<int64_t> &start_, &column_;
    std::vector<int64_t> row_of_;  // of a column, -1 for none
    std::vector<int64_t> free_;    // columns before this place are taken for good
    std::vector<int64_t> next_;    // where a row's search stands
    std::vector<int64_t> seen_by_; // the last search that met a column
    std::vector<int64_t> path_, taken_;
};

} // namespace

int64_t unpaired_row(const pattern &a)
{
    std::vector<bool> on_diagonal(a.n, false);
    bool complete = true;
    for (int64_t row = 0; row < a.n; ++row) {
        for (int64_t k = a.start[row]; k < a.start[row + 1]; ++k)
            on_diagonal[row] = on_diagonal[row] || a.column[k] == row;
        complete = complete && on_diagonal[row];
    }
    if (complete)
        return -1;

    std::vector<int64_t> start = a.start, column = a.column;
    if (a.triangle) {
        const graph both = graph_of(a);
        start.assign(1, 0);
        column.clear();
        for (int64_t row = 0; row < a.n; ++row) {
            column.insert(column.end(), both.neighbour.begin() + both.start[row],
                          both.neighbour.begin() + both.start[row + 1]);
            if (on_diagonal[row])
                column.push_back(row);
            start.push_back(static_cast<int64_t>(column.size()));
        }
    }
    pairing pairs(start, column, a.n);
    for (int64_t row = 0; row < a.n; ++row)
        if (on_diagonal[row])
            pairs.take(row, row);
    for (int64_t row = 0; row < a.n; ++row)
        if (!on_diagonal[row] && !pairs.augment(row))
            return row;
    return -1;
}

} // namespace xkl::core::solvers
