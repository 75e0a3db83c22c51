// Copying between layouts element by element: what a line holds goes across the lines of the other layout.
#pragma once

#include "lapacke/stored_lines.h"

namespace xkl::lapacke {

/// Lines that are copied together, so that each visit to a place of the destination fills neighbours.
inline constexpr int64_t lines_at_once = 16;

/// A copy of stored lines
template <class T>
struct line_copy {
    const T *in;
    line_starts in_starts;
    T *out;
    line_starts out_starts;
    line_parts parts;

    void run() const
    {
        for (int64_t k = 0; k < parts.count; k += lines_at_once)
            copy_lines(k, smaller(k + lines_at_once, parts.count));
    }

  private:
    void copy_element(int64_t k, int64_t p) const { out[out_starts[p] + k] = in[in_starts[k] + p]; }

    void copy_ends(int64_t k, int64_t from, int64_t to) const
    {
        for (int64_t p = from; p < to; ++p)
            copy_element(k, p);
    }

    /// The positions that all of the lines hold go side by side, the others line by line.
    void copy_lines(int64_t begin, int64_t end) const
    {
        int64_t from = larger(parts.first_of(begin), parts.first_of(end - 1));
        int64_t to = smaller(parts.last_of(begin), parts.last_of(end - 1));
        if (from > to)
            from = to = parts.low;
        for (int64_t k = begin; k < end; ++k) {
            copy_ends(k, parts.first_of(k), smaller(from, parts.last_of(k)));
            copy_ends(k, larger(to, parts.first_of(k)), parts.last_of(k));
        }
        for (int64_t p = from; p < to; ++p)
            for (int64_t k = begin; k < end; ++k)
                copy_element(k, p);
    }
};

/// Copies as many lines as the destination's leading dimension has room for.
template <class T>
void copy_dense(int layout, int64_t m, int64_t n, diagonals part, const T *in, int64_t ldin, T *out,
                int64_t ldout)
{
    line_parts parts = dense_lines(layout, m, n, part, ldin);
    parts.count = smaller(parts.count, ldout);
    line_copy<T>{in, {ldin}, out, {ldout}, parts}.run();
}

} // namespace xkl::lapacke
