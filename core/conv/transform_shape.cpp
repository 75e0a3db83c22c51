// How large the transforms are to be.
#include "conv/elements.h"
#include "conv/transform.h"

#include <algorithm>
#include <cmath>

namespace xkl::core::conv {
namespace {

bool is_smooth(int64_t n) noexcept
{
    for (const int64_t prime : {2, 3, 5, 7})
        while (n % prime == 0)
            n /= prime;
    return n == 1;
}

int64_t next_smooth(int64_t n) noexcept
{
    constexpr int64_t long_enough_for_multiples = 64;
    const int64_t unit = n < long_enough_for_multiples ? 1 : 4;
    for (n = (n + unit - 1) / unit * unit; !is_smooth(n); n += unit)
        continue;
    return n;
}

// The least length in which neither end of the full result wraps around to a wanted element.
int64_t whole_length(const dimension &d) noexcept
{
    const int64_t last = d.first + (d.count - 1) * d.step, top = d.a_count + d.b_count - 2;
    return std::max({d.a_count, d.b_count, last + 1, top - d.first + 1});
}

/// Nanoseconds of one transform, with its part of loading, multiplying and storing
template <class R, class T>
double time_of(double elements) noexcept
{
    constexpr double butterfly = (sizeof(R) == sizeof(double) ? 0.15 : 0.1) * parts_of<T>::count;
    constexpr double movement = 0.5 * parts_of<T>::count, cache = 1 << 20, beyond_cache = 1.8;
    const double time = elements * (butterfly * std::log2(elements + 1) + movement);
    return elements * sizeof(R) * parts_of<T>::count > cache ? beyond_cache * time : time;
}

} // namespace

int64_t transform_shape::blocks() const noexcept
{
    int64_t all = 1;
    for (int d = 0; d < rank; ++d)
        all *= axes[d].blocks;
    return all;
}

// One dimension after the other, each with the best of all choices while later ones stay whole. Lengths of
// blocks are 4, 5, 6 or 7 times a power of 2: steps small enough for a good choice.
template <class R, class T>
transform_shape choose_transform(const problem<T> &p, bool a_is_fixed) noexcept
{
    constexpr double call = 2500;
    transform_shape shape{p.rank, {}, call};
    double elements = 1, blocks = 1; // of the present choice
    for (int d = 0; d < p.rank; ++d) {
        shape.axes[d] = {next_smooth(whole_length(p.dimensions[d])), p.dimensions[d].count, 1};
        elements *= static_cast<double>(shape.axes[d].length);
    }
    const double once = a_is_fixed ? 0 : 1;
    double cost = time_of<R, T>(elements) * (2 + once);
    for (int d = 0; d < p.rank; ++d) {
        const dimension &here = p.dimensions[d];
        const axis whole = shape.axes[d];
        const double others = elements / static_cast<double>(whole.length), other_blocks = blocks;
        for (int64_t unit = 1; 4 * unit < whole.length; unit *= 2)
            for (int64_t length = 4 * unit; length < 8 * unit && length < whole.length; length += unit) {
                if (length <= here.a_count)
                    continue;
                const int64_t per_block = (length - here.a_count) / here.step + 1;
                const axis cut{length, per_block, (here.count - 1) / per_block + 1};
                const double cut_elements = others * static_cast<double>(length);
                const double cut_blocks = other_blocks * static_cast<double>(cut.blocks);
                const double cut_cost = time_of<R, T>(cut_elements) * (2 * cut_blocks + once);
                if (cut_cost < cost) {
                    cost = cut_cost;
                    elements = cut_elements;
                    blocks = cut_blocks;
                    shape.axes[d] = cut;
                }
            }
    }
    shape.cost += cost;
    return shape;
}

template transform_shape choose_transform<float>(const problem<float> &, bool) noexcept;
template transform_shape choose_transform<double>(const problem<float> &, bool) noexcept;
template transform_shape choose_transform<double>(const problem<double> &, bool) noexcept;
template transform_shape choose_transform<float>(const problem<std::complex<float>> &, bool) noexcept;
template transform_shape choose_transform<double>(const problem<std::complex<float>> &, bool) noexcept;
template transform_shape choose_transform<double>(const problem<std::complex<double>> &, bool) noexcept;

} // namespace xkl::core::conv
