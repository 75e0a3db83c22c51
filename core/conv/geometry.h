// Where the elements of a convolution lie. Convolution and correlation of any start, decimation and strides
// become one form here, which the direct sums and the transforms both compute:
//     z[i] = sum over j of a[j] b[first + i step - j], in each dimension alike.
// A correlation is the convolution with its first array conjugated and read backwards.
#pragma once

#include <cstdint>

namespace xkl::core::conv {

constexpr int max_rank = 7;

/// One dimension. Strides are counted in elements.
struct dimension {
    int64_t a_count, b_count;   // elements of the two inputs
    int64_t first, step, count; // wanted elements of the full result, which has a_count + b_count - 1
    int64_t a_stride, b_stride, z_stride;
};

/// How many elements are passed over at the start of each array.
struct skipped {
    int64_t a = 0, b = 0, z = 0;
};

/// Leaves out the wanted elements that lie outside of the full result: they are zero. None may be left.
int64_t trim_result(dimension &) noexcept;

/// Leaves out the elements of b that no wanted element needs. The wanted ones lie in the full result.
int64_t trim_b(dimension &) noexcept;

/// Both, and the elements of a that are not needed.
skipped trim(dimension &) noexcept;

/// Products that the direct sums of a dimension have
double products(const dimension &) noexcept;

template <class T>
struct problem {
    int rank;
    dimension dimensions[max_rank]; // the last one is the inner one
    const T *a, *b;
    T *z;
    bool a_conjugated, b_conjugated;

    dimension &inner() { return dimensions[rank - 1]; }
    const dimension &inner() const { return dimensions[rank - 1]; }

    /// All elements of the array that has these counts
    double elements(int64_t dimension::*count) const noexcept;
    /// Convolution does not care which input comes first; computing it does.
    void put_smaller_first() noexcept;
    /// Leaves out in one dimension what is not needed. Where nothing is left, its count becomes 0.
    void trim(int d) noexcept;
};

template <class T>
double problem<T>::elements(int64_t dimension::*count) const noexcept
{
    double all = 1;
    for (int d = 0; d < rank; ++d)
        all *= static_cast<double>(dimensions[d].*count);
    return all;
}

template <class T>
void problem<T>::put_smaller_first() noexcept
{
    if (elements(&dimension::a_count) <= elements(&dimension::b_count))
        return;
    const auto exchange = [](auto &p, auto &q) {
        const auto old = p;
        p = q;
        q = old;
    };
    for (dimension *d = dimensions; d < dimensions + rank; ++d) {
        exchange(d->a_count, d->b_count);
        exchange(d->a_stride, d->b_stride);
    }
    exchange(a, b);
    exchange(a_conjugated, b_conjugated);
}

template <class T>
void problem<T>::trim(int d) noexcept
{
    dimension &trimmed = dimensions[d];
    const skipped by = conv::trim(trimmed);
    if (trimmed.count == 0)
        return;
    a += by.a * trimmed.a_stride;
    b += by.b * trimmed.b_stride;
    z += by.z * trimmed.z_stride;
}

} // namespace xkl::core::conv
