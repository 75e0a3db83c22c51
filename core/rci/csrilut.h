// Incomplete factors with a bound on what is kept: of each row at most maxfil elements of L and of U beside
// the diagonal, the largest ones, and none that is small beside the row. They come out as compressed rows
// with indices from 1; L, with ones on its diagonal, below U.
#pragma once

#include "incomplete_rows.h"

namespace xkl::core {

template <class T>
class ilut {
  public:
    ilut(const iss::sparse_rows<T> &rows, T *factors, int64_t *ib, int64_t *jb, T drop, int64_t most,
         int64_t *integers, T *values)
        : rows_(rows), factors_(factors), ib_(ib), jb_(jb), drop_(drop), most_(most), values_(values),
          columns_(integers), kept_(integers + rows.n), diagonal_(integers + 2 * rows.n),
          in_row_(integers + 3 * rows.n)
    {
        std::fill(in_row_, in_row_ + rows.n, int64_t{0});
        ib_[0] = 1;
    }

    int64_t eliminate(int64_t row, bool replaces, T least)
    {
        if (rows_.end(row) <= rows_.begin(row))
            return iss::no_diagonal;
        load(row);
        const T small = drop_ * norm_;
        for (int64_t done = 0; done < lower_; ++done)
            subtract(next_column(done), small);
        const int64_t result = pivot(row, replaces, least * norm_);
        store(row, small);
        return result;
    }

  private:
    /// Columns left of the diagonal stand first in columns_, in no order beyond what next_column makes.
    void load(int64_t row)
    {
        lower_ = upper_ = 0;
        row_ = row;
        T sum = 0;
        put(row, 0);
        for (int64_t place = rows_.begin(row); place < rows_.end(row); ++place) {
            put(rows_.column(place), rows_.a[place]);
            sum += rows_.a[place] * rows_.a[place];
        }
        norm_ = std::sqrt(sum);
    }

    void put(int64_t column, T value)
    {
        if (in_row_[column] == 0) {
            in_row_[column] = 1;
            if (column < row_)
                columns_[lower_++] = column;
            else if (column > row_)
                kept_[upper_++] = column;
        }
        values_[column] = value;
    }

    /// The least of the columns of L that were not looked at, put in place `done`
    int64_t next_column(int64_t done)
    {
        std::swap(columns_[done], *std::min_element(columns_ + done, columns_ + lower_));
        return columns_[done];
    }

    void subtract(int64_t above, T small)
    {
        const T multiplier = values_[above] / factors_[diagonal_[above]];
        values_[above] = std::abs(multiplier) <= small ? T(0) : multiplier;
        if (values_[above] == 0)
            return;
        for (int64_t k = diagonal_[above] + 1; k < ib_[above + 1] - 1; ++k) {
            const int64_t column = jb_[k] - 1;
            put(column, (in_row_[column] != 0 ? values_[column] : T(0)) - multiplier * factors_[k]);
        }
    }

    int64_t pivot(int64_t row, bool replaces, T least)
    {
        T &value = values_[row];
        if (std::abs(value) > least)
            return iss::incomplete_done;
        if (!replaces || least == 0)
            return value == 0 || !replaces ? iss::zero_diagonal : iss::incomplete_done;
        value = std::signbit(value) ? -least : least;
        return iss::incomplete_done;
    }

    /// Keeps the largest of one side in ascending order; forgets them all.
    int64_t append(int64_t *columns, int64_t count, T small, int64_t place)
    {
        int64_t *const end = std::partition(columns, columns + count, [&](int64_t column) {
            return values_[column] != 0 && std::abs(values_[column]) > small;
        });
        int64_t *const last = columns + std::min(end - columns, most_);
        std::nth_element(columns, last, end, [&](int64_t one, int64_t other) {
            return std::abs(values_[one]) > std::abs(values_[other]);
        });
        std::sort(columns, last);
        for (const int64_t *column = columns; column < last; ++column, ++place) {
            factors_[place] = values_[*column];
            jb_[place] = *column + 1;
        }
        for (int64_t i = 0; i < count; ++i)
            in_row_[columns[i]] = 0;
        return place;
    }

    void store(int64_t row, T small)
    {
        int64_t place = append(columns_, lower_, small, ib_[row] - 1);
        in_row_[row] = 0;
        diagonal_[row] = place;
        factors_[place] = values_[row];
        jb_[place++] = row + 1;
        ib_[row + 1] = append(kept_, upper_, small, place) + 1;
    }

    iss::sparse_rows<T> rows_;
    T *factors_;
    int64_t *ib_, *jb_;
    T drop_;
    int64_t most_;
    T *values_;                // by column: the current row
    int64_t *columns_, *kept_; // its columns left of the diagonal, and right of it
    int64_t *diagonal_;        // places of the diagonal in the rows so far
    int64_t *in_row_;          // by column: not 0 if the row has it
    int64_t lower_ = 0, upper_ = 0, row_ = 0;
    T norm_ = 0;
};

template <class T>
void csrilut(const int64_t *n, const T *a, const int64_t *ia, const int64_t *ja, T *factors, int64_t *ib,
             int64_t *jb, const T *tol, const int64_t *maxfil, const int64_t *ipar, const T *dpar,
             int64_t *error)
{
    const iss::sparse_rows<T> rows{*n, a, ia, ja};
    *error = rows.mistake();
    if (*error != iss::incomplete_done)
        return;
    const auto integers = iss::space_for<int64_t>(4 * *n);
    const auto values = iss::space_for<T>(*n);
    if (!integers || !values) {
        *error = iss::incomplete_no_memory;
        return;
    }
    const bool replaces = ipar[iss::replace_pivots] != 0;
    const T drop = std::abs(*tol), least = std::abs(dpar[iss::least_pivot]);
    const int64_t most = std::clamp(*maxfil, int64_t{0}, *n - 1);
    ilut<T> factorization(rows, factors, ib, jb, drop, most, integers.get(), values.get());
    for (int64_t row = 0; row < *n && *error == iss::incomplete_done; ++row)
        *error = factorization.eliminate(row, replaces, least);
    if (*error != iss::incomplete_done)
        return;
    *error = *maxfil >= *n              ? iss::filling_cut
             : *tol < 0                 ? iss::negative_tolerance
             : replaces && drop > least ? iss::large_tolerance
             : replaces && least == 0   ? iss::no_replacement
                                        : iss::incomplete_done;
}

} // namespace xkl::core
