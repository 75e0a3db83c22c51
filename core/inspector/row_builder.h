// Building the rows of a sparse result from terms that add up, in the stages in which a product can be
// asked for.
//
// A result is told as a function: terms(i, use) calls use(column, value) for each term of row i. Each
// thread collects the terms of a row in a dense vector, so that the rows come out sorted and without
// doubles.
#pragma once

#include "arguments.h"

namespace xkl::core::inspector {

struct stages {
    bool starts = false, columns = false, values = false;
};

inline bool stages_of(sparse_request_t request, stages &of)
{
    switch (request) {
    case SPARSE_STAGE_FULL_MULT:
        of = {true, true, true};
        return true;
    case SPARSE_STAGE_NNZ_COUNT:
        of = {true, false, false};
        return true;
    case SPARSE_STAGE_FINALIZE_MULT:
        of = {false, true, true};
        return true;
    case SPARSE_STAGE_FULL_MULT_NO_VAL:
        of = {true, true, false};
        return true;
    case SPARSE_STAGE_FINALIZE_MULT_NO_VAL:
        of = {false, true, false};
        return true;
    }
    return false;
}

/// Threads that build rows, each with vectors of a row's length
template <class T>
class row_team {
  public:
    row_team(int64_t rows, int64_t cols, double work)
        : rows_(rows), cols_(cols), work_(work),
          size_(work < loop_work_that_pays
                    ? 1
                    : std::max<int64_t>(1, std::min<int64_t>(rows, threads_for(XKL_DOMAIN_SPARSE))))
    {
    }
    bool make() { return marks_.make(size_ * cols_) && sums_.make(size_ * cols_); }

    /// Calls body(i, marks, sums) for all rows; all marks are smaller than any row before.
    template <class Body>
    void run(const Body &body)
    {
        std::fill_n(marks_.data(), size_ * cols_, -1);
        parallel_for(size_, XKL_DOMAIN_SPARSE, work_ / static_cast<double>(size_), [&](int64_t piece) {
            const int64_t last = (piece + 1) * rows_ / size_;
            for (int64_t i = piece * rows_ / size_; i < last; ++i)
                body(i, marks_.data() + piece * cols_, sums_.data() + piece * cols_);
        });
    }

  private:
    int64_t rows_, cols_;
    double work_;
    int64_t size_;
    array<int64_t> marks_;
    array<T> sums_;
};

/// starts[i + 1]: how many columns row i has
template <class T, class Terms>
void count_rows(row_team<T> &team, int64_t *starts, const Terms &terms)
{
    starts[0] = 0;
    team.run([&](int64_t i, int64_t *marks, T *) {
        int64_t count = 0;
        terms(i, [&](int64_t column, const T &) {
            if (marks[column] != i) {
                marks[column] = i;
                ++count;
            }
        });
        starts[i + 1] = count;
    });
}

/// Fills columns and, unless null, values of rows whose places are known.
template <class T, class Terms>
void fill_rows(row_team<T> &team, const int64_t *starts, int64_t base, int64_t *columns, T *values,
               const Terms &terms)
{
    team.run([&](int64_t i, int64_t *marks, T *sums) {
        int64_t *const first = columns + (starts[i] - base), *last = first;
        terms(i, [&](int64_t column, const T &value) {
            if (marks[column] == i) {
                sums[column] += value;
                return;
            }
            marks[column] = i;
            sums[column] = value;
            *last++ = column;
        });
        std::sort(first, last);
        for (int64_t *at = first; at < last; ++at) {
            if (values)
                values[at - columns] = sums[*at];
            *at += base;
        }
    });
}

/// A handle of the result's size without arrays
template <class T>
sparse_matrix *empty_result(int64_t rows, int64_t cols, sparse_index_base_t base)
{
    auto *const c = make<sparse_matrix>();
    if (!c)
        return nullptr;
    c->type = letter_of<T>;
    c->rows = rows;
    c->cols = cols;
    c->base = base;
    return c;
}

/// Gives a handle the arrays that it has none of.
template <class T>
sparse_status_t make_places(sparse_matrix &c, int64_t places, const stages &of)
{
    array<int64_t> columns;
    array<T> values;
    const bool no_columns = of.columns && !c.minor, no_values = of.values && !c.values;
    if ((no_columns || no_values) && !c.owns && places > 0)
        return SPARSE_STATUS_NOT_INITIALIZED; // the caller's rows, without the rest
    if ((no_columns && !columns.make(places)) || (no_values && !values.make(places)))
        return SPARSE_STATUS_ALLOC_FAILED;
    if (no_columns)
        c.minor = columns.release();
    if (no_values)
        c.values = values.release();
    return SPARSE_STATUS_SUCCESS;
}

/// The stages that start a result: a new handle.
template <class T, class Terms>
sparse_status_t start_result(int64_t rows, int64_t cols, sparse_index_base_t base, double work,
                             const stages &of, sparse_matrix **made, const Terms &terms)
{
    row_team<T> team(rows, cols, work);
    array<int64_t> starts;
    if (!team.make() || !starts.make(rows + 1))
        return SPARSE_STATUS_ALLOC_FAILED;
    count_rows(team, starts.data(), terms);
    starts[0] = base;
    for (int64_t i = 0; i < rows; ++i)
        starts[i + 1] += starts[i];
    sparse_matrix *const c = empty_result<T>(rows, cols, base);
    if (!c)
        return SPARSE_STATUS_ALLOC_FAILED;
    c->starts = starts.release();
    c->ends = c->starts + 1;
    c->owns = true;
    if (const auto bad = make_places<T>(*c, c->starts[rows] - base, of)) {
        unmake(c);
        return bad;
    }
    if (of.columns)
        fill_rows(team, c->starts, base, c->minor, of.values ? static_cast<T *>(c->values) : nullptr,
                  terms);
    *made = c;
    return SPARSE_STATUS_SUCCESS;
}

/// The stages that go on with one: its rows must have the places that the terms need.
template <class T, class Terms>
sparse_status_t finish_result(int64_t rows, int64_t cols, double work, const stages &of, sparse_matrix *c,
                              const Terms &terms)
{
    if (!c || (rows > 0 && !c->starts))
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (c->type != letter_of<T> || c->form != storage::csr || c->rows != rows || c->cols != cols)
        return SPARSE_STATUS_INVALID_VALUE;
    row_team<T> team(rows, cols, work);
    array<int64_t> counts;
    if (!team.make() || !counts.make(rows + 1))
        return SPARSE_STATUS_ALLOC_FAILED;
    count_rows(team, counts.data(), terms);
    int64_t places = 0;
    for (int64_t i = 0; i < rows; ++i) {
        if (c->ends[i] - c->starts[i] != counts[i + 1])
            return fail_at(*c, i, SPARSE_STATUS_INVALID_VALUE);
        places = std::max(places, c->ends[i] - c->base);
    }
    if (const auto bad = make_places<T>(*c, places, of))
        return bad;
    c->forget_prepared();
    fill_rows(team, c->starts, c->base, c->minor, of.values ? static_cast<T *>(c->values) : nullptr, terms);
    return SPARSE_STATUS_SUCCESS;
}

template <class T, class Terms>
sparse_status_t build_result(int64_t rows, int64_t cols, sparse_index_base_t base, double work,
                             sparse_request_t request, sparse_matrix **c, const Terms &terms)
{
    stages of;
    if (!stages_of(request, of))
        return SPARSE_STATUS_INVALID_VALUE;
    return of.starts ? start_result<T>(rows, cols, base, work, of, c, terms)
                     : finish_result<T>(rows, cols, work, of, *c, terms);
}

} // namespace xkl::core::inspector
