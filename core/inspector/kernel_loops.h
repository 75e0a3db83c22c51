// The products, compiled once for each instruction set under internal names: a linker that merged equal
// names would mix instruction sets. Sums add one element of each row of a slice; a dot is a row times the
// vector.
#pragma once

namespace xkl::core::inspector {
namespace {

/// Asks for what comes later in an array that is read once: processors look ahead within a page only, and
/// slices and rows are short.
template <class T>
[[gnu::always_inline]] inline void fetch_ahead(const T *place)
{
    constexpr uintptr_t distance = 2560; // perhaps beyond the array
    __builtin_prefetch(reinterpret_cast<const void *>(reinterpret_cast<uintptr_t>(place) + distance));
}

template <class T, class Sums>
void multiply_slices(const slice_product<T> &by, int64_t first, int64_t last)
{
    constexpr int64_t height = slice_height<T>;
    for (int64_t slice = first; slice < last; ++slice) {
        Sums sums;
        sums.clear();
        for (int64_t k = by.starts[slice]; k < by.starts[slice + 1]; k += height) {
            fetch_ahead(by.values + k);
            fetch_ahead(by.columns + k);
            sums.add(by.values + k, by.columns + k, by.x);
        }
        alignas(64) T made[height];
        sums.store(made);
        T *const y = by.y + slice * height;
        const int64_t left = by.rows - slice * height, count = left < height ? left : height;
        if (by.beta == T(0))
            for (int64_t i = 0; i < count; ++i)
                y[i] = by.alpha * made[i];
        else
            for (int64_t i = 0; i < count; ++i)
                y[i] = by.alpha * made[i] + by.beta * y[i];
    }
}

/// dot(values, columns, count, x, base)
template <class T, class I, T (*dot)(const T *, const I *, int64_t, const T *, int64_t)>
void multiply_rows(const row_product<T, I> &by, int64_t first, int64_t last)
{
    for (int64_t i = first; i < last; ++i) {
        const int64_t start = by.starts[i] - by.base;
        fetch_ahead(by.values + start);
        fetch_ahead(by.columns + start);
        const T sum =
            by.alpha * dot(by.values + start, by.columns + start, by.ends[i] - by.starts[i], by.x, by.base);
        by.y[i] = by.beta == T(0) ? sum : sum + by.beta * by.y[i];
    }
}

} // namespace
} // namespace xkl::core::inspector
