// What the storages of sparse matrices have in common, so that each operation is written once. A storage is a
// number of items; the elements of an item lie on one line of the matrix, a row or a column. It has
//
//   own_lines        whether no two items share a line, so that threads that share the items write apart
//   items(), stored()   how many items there are, and about how many elements
//   line(item)       the item's line, from 0
//   visit(item, f)   calls f(place on the line, from 0, element) for each element of the item
//   cut(part, parts)    the first item of a part, when the items are cut into parts of about equal work
//
// Indices are trusted. Transposition makes rows of columns and costs nothing.
#pragma once

#include "blas/elements.h"
#include "service/kernel_threads.h"
#include "service/service_entries.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace xkl::core::spblas {

inline constexpr int64_t cache_line = 64;

/// Asks for what comes after some elements of an array that is read once. Processors look ahead within a page
/// only, and short lines keep them from starting early: without this a product waits for a third of its time.
template <int64_t count, class T>
[[gnu::always_inline]] inline void fetch_ahead(const T *place)
{
    constexpr uintptr_t distance = 2560;
    const uintptr_t address = reinterpret_cast<uintptr_t>(place) + distance; // perhaps beyond the array
    for (uintptr_t line = 0; line < count * sizeof(T); line += cache_line)
        __builtin_prefetch(reinterpret_cast<const void *>(address + line));
}

/// Rows of CSR or columns of CSC. Places count from the first one, whatever its number is.
template <class T>
struct compressed {
    static constexpr bool own_lines = true;
    const T *values;
    const int64_t *across, *begins, *ends;
    int64_t count, base;

    int64_t items() const { return count; }
    double stored() const { return count > 0 ? static_cast<double>(ends[count - 1] - begins[0]) : 0; }
    int64_t line(int64_t item) const { return item; }

    template <class F>
    [[gnu::always_inline]] void visit(int64_t item, const F &f) const
    {
        int64_t p = begins[item] - begins[0];
        const int64_t end = ends[item] - begins[0];
        while (p < end) {
            constexpr int64_t at_once = cache_line / sizeof(int64_t);
            fetch_ahead<at_once>(values + p);
            fetch_ahead<at_once>(across + p);
            for (const int64_t stop = std::min(p + at_once, end); p < stop; ++p)
                f(across[p] - base, values[p]);
        }
    }

    /// Lines and elements both take time. Starts that don't rise make parts unequal, nothing worse.
    int64_t cut(int64_t part, int64_t parts) const
    {
        if (part == 0 || part == parts)
            return part == 0 ? 0 : count;
        const double goal = (stored() + static_cast<double>(count)) * static_cast<double>(part) /
                            static_cast<double>(parts);
        int64_t low = 0, high = count;
        while (low < high) {
            const int64_t middle = low + (high - low) / 2;
            if (static_cast<double>(begins[middle] - begins[0] + middle) < goal)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }
};

/// A matrix in a storage whose lines are its rows or its columns.
template <class Storage>
struct matrix {
    Storage storage;
    int64_t rows, columns;
    bool by_rows;

    void transpose()
    {
        std::swap(rows, columns);
        by_rows = !by_rows;
    }
};

/// What matdescra says. Letters that the kind of matrix has no use for are not read.
struct description {
    char kind;
    bool upper = false, unit = false, from_one = true;

    explicit description(const char *letters)
        : kind(static_cast<char>(letters[0] & ~0x20)), from_one(!is(letters[3], 'C'))
    {
        if (kind != 'G' && kind != 'D')
            upper = is(letters[1], 'U');
        if (kind != 'G' && kind != 'A')
            unit = is(letters[2], 'U');
    }
    /// Of a matrix that the routine's name describes
    description(char kind, bool upper, bool unit, bool from_one)
        : kind(kind), upper(upper), unit(unit), from_one(from_one)
    {
    }
    int64_t base() const { return from_one ? 1 : 0; }
};

/// Matrices that a routine's name describes
inline constexpr bool from_zero = false, from_one = true;
inline description general(bool base)
{
    return {'G', false, false, base};
}
inline description symmetric(char uplo, bool base)
{
    return {'S', is(uplo, 'U'), false, base};
}
inline description triangular(char uplo, char diag, bool base)
{
    return {'T', is(uplo, 'U'), is(diag, 'U'), base};
}

/// One column, contiguous
template <class T>
struct column {
    T *data;
    static constexpr int64_t width = 1;
    T *operator[](int64_t row) const { return data + row; }
    template <class U>
    column<U> over(U *place) const
    {
        return {place};
    }
};

/// Several columns whose rows are contiguous and lie at a distance
template <class T>
struct columns {
    T *data;
    int64_t width, distance;
    T *operator[](int64_t row) const { return data + row * distance; }
    /// As many columns elsewhere, without a distance
    template <class U>
    columns<U> over(U *place) const
    {
        return {place, width, width};
    }
};

/// A dense matrix of the caller, by columns or by rows
template <class T>
struct panel {
    T *data;
    int64_t width = 1, distance = 0;
    bool by_rows = false;
};

/// One whose indices start where those of the sparse matrix do: from 0 by rows, from 1 by columns
template <class T>
panel<T> operand(T *data, int64_t width, int64_t distance, const description &is)
{
    return {data, width, distance, !is.from_one};
}

/// op(v), but for the place
template <class T>
T turned(T v, bool conjugated)
{
    if constexpr (element<T>::is_complex)
        return conjugated ? conjugate(v) : v;
    else
        return v;
}

/// y := y + a*x, of real elements several at once
template <class T>
void add_multiple(int64_t n, T a, const T *x, T *y)
{
    int64_t q = 0;
    if constexpr (!element<T>::is_complex) {
        typedef T several __attribute__((vector_size(32), aligned(alignof(T)), may_alias));
        constexpr int64_t count = sizeof(several) / sizeof(T);
        for (; q + count <= n; q += count)
            *reinterpret_cast<several *>(y + q) += a * *reinterpret_cast<const several *>(x + q);
    }
    for (; q < n; ++q)
        y[q] += product(a, x[q]);
}

/// Memory of the library's allocator for so long as the scope lasts; none when there is none left, or when
/// so many elements have no size.
template <class T>
class buffer {
  public:
    explicit buffer(int64_t count, int64_t rows = 1)
    {
        size_t bytes;
        enough_ = count <= 0 || rows <= 0;
        if (enough_ || __builtin_mul_overflow(count, rows, &bytes) ||
            __builtin_mul_overflow(bytes, sizeof(T), &bytes))
            return;
        data_ = static_cast<T *>(xkl_serv_malloc(bytes, 64));
        enough_ = data_ != nullptr;
    }
    ~buffer()
    {
        if (data_)
            xkl_serv_free(data_);
    }
    buffer(const buffer &) = delete;
    buffer &operator=(const buffer &) = delete;

    bool enough() const { return enough_; }
    T *data() const { return data_; }
    T &operator[](int64_t i) const { return data_[i]; }

  private:
    T *data_ = nullptr;
    bool enough_;
};

inline int64_t thread_count()
{
    return threads_for(XKL_DOMAIN_SPARSE);
}

/// Where a part of count things starts when all parts are of equal size
inline int64_t start_of(int64_t count, int64_t part, int64_t parts)
{
    return count / parts * part + std::min(part, count % parts);
}

/// body(first, end) for parts of count things, which take so much work together
template <class Body>
void in_parts(int64_t parts, int64_t count, double work, const Body &body)
{
    if (parts <= 1)
        return body(int64_t{0}, count);
    parallel_for(parts, XKL_DOMAIN_SPARSE, work / static_cast<double>(parts), [&](int64_t part) {
        body(start_of(count, part, parts), start_of(count, part + 1, parts));
    });
}

/// Parts enough for threads to even out
inline int64_t parts_of(double work)
{
    return work < loop_work_that_pays ? 1 : 8 * thread_count();
}

} // namespace xkl::core::spblas
