// Copies of the inputs for the direct sums: rows of neighbouring numbers along the inner dimension, real and
// imaginary parts apart. Where only every step-th element of the result is wanted, a row is dealt out to one
// row for each phase: between two phases the sums are those of step 1 again, and no unwanted element is
// computed.
#pragma once

#include "conv/elements.h"
#include "conv/geometry.h"
#include "service/kernel_threads.h"

#include <algorithm>
#include <cstring>

namespace xkl::core::conv {

/// The dimensions of one input
struct input_shape {
    int rank;
    int64_t counts[max_rank], strides[max_rank];

    int64_t inner() const noexcept { return counts[rank - 1]; }
    int64_t outer() const noexcept
    {
        int64_t all = 1;
        for (int d = 0; d < rank - 1; ++d)
            all *= counts[d];
        return all;
    }
};

template <class R>
struct packed_rows {
    R *memory;
    int64_t step, phases, inner_count;
    int64_t margin;    // zeros on either side of a row
    int64_t imaginary; // distance from a row's real parts to its imaginary ones
    int64_t row_size;

    packed_rows(const input_shape &shape, int64_t of_step, int64_t of_margin, int parts) noexcept
        : memory(nullptr), step(of_step), phases(std::min(of_step, shape.inner())),
          inner_count(shape.inner()), margin(of_margin)
    {
        constexpr int64_t line = 64 / sizeof(R);
        imaginary = (length(0) + 2 * margin + line - 1) / line * line;
        row_size = imaginary * parts;
    }
    int64_t length(int64_t phase) const noexcept { return (inner_count - phase + step - 1) / step; }
    R *row(int64_t outer, int64_t phase) const noexcept
    {
        return memory + (outer * phases + phase) * row_size + margin;
    }

    template <class T>
    void fill(const T *from, const input_shape &shape, bool conjugated) const noexcept;

  private:
    template <class T>
    void fill_row(const T *from, int64_t stride, bool conjugated, R *to, int64_t count) const noexcept;
};

template <class R>
template <class T>
void packed_rows<R>::fill_row(const T *from, int64_t stride, bool conjugated, R *to,
                              int64_t count) const noexcept
{
    for (int part = 0; part < parts_of<T>::count; ++part) {
        R *const row = to + part * imaginary;
        std::memset(row - margin, 0, sizeof(R) * static_cast<size_t>(imaginary));
        const auto *element = reinterpret_cast<const typename parts_of<T>::real *>(from) + part;
        const R sign = conjugated && part == 1 ? R(-1) : R(1);
        for (int64_t i = 0; i < count; ++i)
            row[i] = sign * static_cast<R>(element[i * stride * parts_of<T>::count]);
    }
}

template <class R>
template <class T>
void packed_rows<R>::fill(const T *from, const input_shape &shape, bool conjugated) const noexcept
{
    const double work = 4 * static_cast<double>(inner_count);
    parallel_for(shape.outer(), XKL_DOMAIN_VML, work, [&](int64_t outer) {
        const T *line = from;
        for (int64_t d = shape.rank - 2, place = outer; d >= 0; place /= shape.counts[d], --d)
            line += place % shape.counts[d] * shape.strides[d];
        const int64_t stride = shape.strides[shape.rank - 1];
        for (int64_t phase = 0; phase < phases; ++phase)
            fill_row(line + phase * stride, stride * step, conjugated, row(outer, phase), length(phase));
    });
}

} // namespace xkl::core::conv
