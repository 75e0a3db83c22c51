// Copying between layouts element by element: what a line holds goes across the lines of the other layout.
#pragma once

#include "lapacke/stored_lines.h"

namespace xkl::lapacke {

/// Large matrices are copied so many lines at a time, position by position: each visit to a place of the
/// destination then fills neighbours. Small ones stay in the cache anyway.
inline constexpr int64_t lines_at_once = 16, few_lines = 64;

/// Walks the starts of lines from line `first` on; each step is an addition.
template <class T>
class line_cursor {
  public:
    line_cursor(T *array, const line_starts &starts, int64_t first)
        : line_(array + starts[first]), step_(starts.step + starts.growth * first), growth_(starts.growth)
    {
    }
    T *line() const { return line_; }
    void advance()
    {
        line_ += step_;
        step_ += growth_;
    }

  private:
    T *line_;
    int64_t step_, growth_;
};

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
        if (parts.count <= few_lines)
            for (int64_t k = 0; k < parts.count; ++k)
                copy_line(k, parts.first_of(k), parts.last_of(k));
        else
            for (int64_t k = 0; k < parts.count; k += lines_at_once)
                copy_lines(k, smaller(k + lines_at_once, parts.count));
    }

  private:
    void copy_line(int64_t k, int64_t from, int64_t to) const
    {
        const T *line = in + in_starts[k];
        line_cursor<T> target(out, out_starts, from);
        for (int64_t p = from; p < to; ++p, target.advance())
            target.line()[k] = line[p];
    }

    /// The positions that all of the lines hold go side by side, the others line by line.
    void copy_lines(int64_t begin, int64_t end) const
    {
        int64_t from = larger(parts.first_of(begin), parts.first_of(end - 1));
        int64_t to = smaller(parts.last_of(begin), parts.last_of(end - 1));
        if (from > to)
            from = to = parts.low;
        for (int64_t k = begin; k < end; ++k) {
            copy_line(k, parts.first_of(k), smaller(from, parts.last_of(k)));
            copy_line(k, larger(to, parts.first_of(k)), parts.last_of(k));
        }
        line_cursor<T> target(out, out_starts, from);
        for (int64_t p = from; p < to; ++p, target.advance()) {
            line_cursor<const T> source(in, in_starts, begin);
            T *place = target.line();
            for (int64_t k = begin; k < end; ++k, source.advance())
                place[k] = source.line()[p];
        }
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
