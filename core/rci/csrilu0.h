// Incomplete factors A = L*U within A's own pattern: L, with ones on its diagonal, below U in one array.
#pragma once

#include "incomplete_rows.h"

namespace xkl::core {

template <class T>
struct ilu0 {
    iss::sparse_rows<T> rows;
    T *factors;
    const int64_t *ipar;
    const T *dpar;
    int64_t *diagonal; // places of the diagonal in the rows so far
    int64_t *place_of; // by column: place in the current row, -1 if it has none

    int64_t pivot(int64_t row) const
    {
        T &value = factors[diagonal[row]];
        if (ipar[iss::replace_pivots] != 0 && std::abs(value) < dpar[iss::least_pivot])
            value = dpar[iss::replacing_pivot];
        if (value == 0)
            return iss::zero_diagonal;
        return std::isfinite(1 / value) ? iss::incomplete_done : iss::tiny_diagonal;
    }

    int64_t eliminate(int64_t row) const
    {
        const int64_t first = rows.begin(row), last = rows.end(row);
        diagonal[row] = -1;
        for (int64_t place = first; place < last; ++place) {
            place_of[rows.column(place)] = place;
            if (rows.column(place) == row)
                diagonal[row] = place;
        }
        for (int64_t place = first; place < last && rows.column(place) < row; ++place) {
            const int64_t above = rows.column(place);
            const T multiplier = factors[place] /= factors[diagonal[above]];
            for (int64_t k = diagonal[above] + 1; k < rows.end(above); ++k)
                if (const int64_t target = place_of[rows.column(k)]; target >= 0)
                    factors[target] -= multiplier * factors[k];
        }
        for (int64_t place = first; place < last; ++place)
            place_of[rows.column(place)] = -1;
        return diagonal[row] < 0 ? static_cast<int64_t>(iss::no_diagonal) : pivot(row);
    }
};

template <class T>
void csrilu0(const int64_t *n, const T *a, const int64_t *ia, const int64_t *ja, T *factors,
             const int64_t *ipar, const T *dpar, int64_t *error)
{
    const iss::sparse_rows<T> rows{*n, a, ia, ja};
    *error = rows.mistake();
    if (*error != iss::incomplete_done)
        return;
    const auto diagonal = iss::space_for<int64_t>(2 * *n);
    if (!diagonal) {
        *error = iss::incomplete_no_memory;
        return;
    }
    std::copy(a, a + rows.end(*n - 1), factors);
    std::fill(diagonal.get() + *n, diagonal.get() + 2 * *n, int64_t{-1});
    const ilu0<T> factorization{rows, factors, ipar, dpar, diagonal.get(), diagonal.get() + *n};
    for (int64_t row = 0; row < *n && *error == iss::incomplete_done; ++row)
        *error = factorization.eliminate(row);
}

} // namespace xkl::core
