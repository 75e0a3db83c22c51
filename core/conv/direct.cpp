#include "conv/direct.h"

#include "conv/direct_kernels.h"
#include "conv/packed_rows.h"

#include <cstdlib>

namespace xkl::core::conv {
namespace {

// Numbers of the result that are summed up at a time, and their parts of the inputs: together they fill the
// first-level cache.
constexpr int64_t longest_segment = 1024;
constexpr int64_t longest_strip = 1024;
constexpr int64_t strips_elements = 4 * longest_strip;
constexpr int most_strips = 64;

// Fewer wanted elements than this, with steps between them, are computed one by one: dealing the inputs out
// to phases would leave rows of a few elements.
constexpr int64_t few = 16;

template <class R>
class strip_block {
  public:
    strip_block(strip_sum<R> sum, R *z, int64_t z_imaginary, int64_t count) noexcept
        : sum_(sum), z_(z), imaginary_(z_imaginary), count_(count)
    {
    }
    void add(const packed_rows<R> &a, const R *a_row, int64_t a_count, const packed_rows<R> &b,
             const R *b_row, int64_t b_count, int64_t offset) noexcept
    {
        for (int64_t q = 0; q < a_count; q += longest_strip) {
            const int64_t length = std::min(longest_strip, a_count - q), start = offset - q;
            if (start + count_ <= 0 || start - (length - 1) >= b_count)
                continue;
            strips_[used_++] = {a_row + q, b_row, a.imaginary, b.imaginary, length, b_count, start};
            elements_ += length;
            if (used_ == most_strips || elements_ >= strips_elements)
                flush();
        }
    }
    void flush() noexcept
    {
        sum_(strips_, used_, z_, imaginary_, count_);
        used_ = 0;
        elements_ = 0;
    }

  private:
    strip_sum<R> sum_;
    R *z_;
    int64_t imaginary_, count_;
    int used_ = 0;
    int64_t elements_ = 0;
    strip<R> strips_[most_strips];
};

template <class T>
input_shape shape_of(const problem<T> &p, int64_t dimension::*count, int64_t dimension::*stride) noexcept
{
    input_shape shape{p.rank, {}, {}};
    for (int d = 0; d < p.rank; ++d) {
        shape.counts[d] = p.dimensions[d].*count;
        shape.strides[d] = p.dimensions[d].*stride;
    }
    return shape;
}

template <class T>
input_shape shape_of_a(const problem<T> &p) noexcept
{
    return shape_of(p, &dimension::a_count, &dimension::a_stride);
}

template <class T>
input_shape shape_of_b(const problem<T> &p) noexcept
{
    return shape_of(p, &dimension::b_count, &dimension::b_stride);
}

/// The sums for one problem whose inputs have been packed
template <class R, class T>
class direct_sums {
    static constexpr int parts = parts_of<T>::count;
    static constexpr int64_t width = kernel_width<R>;

  public:
    direct_sums(const problem<T> &p, const packed_rows<R> &a, const packed_rows<R> &b) noexcept
        : p_(p), a_(a), b_(b)
    {
        const strip_sums<R> &sums = direct_kernels_in_force().of<R>();
        sum_ = is_complex<T> ? sums.complex : sums.real;
        // Segments do not depend on the number of threads, so that the rounding of results does not.
        segment_ = std::min(longest_segment, (p.inner().count / 32 + width) / width * width);
        segments_ = (p.inner().count - 1) / segment_ + 1;
    }

    void run() const noexcept
    {
        int64_t items = segments_;
        double work = 0.5 * parts * parts;
        for (int d = 0; d < p_.rank; ++d) {
            work *= products(p_.dimensions[d]);
            if (d < p_.rank - 1)
                items *= p_.dimensions[d].count;
        }
        parallel_for(items, XKL_DOMAIN_VML, work / static_cast<double>(items),
                     [this](int64_t item) { sum_segment(item / segments_, item % segments_ * segment_); });
    }

  private:
    /// In an outer dimension, the elements of a and b whose products go to one place of the result
    struct outer_range {
        int64_t first, last, sum; // of a; the place in b is the difference from the sum
        int64_t place;            // the present one
    };

    void sum_segment(int64_t row, int64_t first) const noexcept
    {
        alignas(64) R sums[parts * longest_segment];
        const int64_t count = std::min(segment_, p_.inner().count - first);
        const int64_t cleared = (count + width - 1) / width * width;
        for (int part = 0; part < parts; ++part)
            std::memset(sums + part * longest_segment, 0, sizeof(R) * static_cast<size_t>(cleared));
        T *z = p_.z + first * p_.inner().z_stride;
        outer_range ranges[max_rank];
        for (int d = p_.rank - 2; d >= 0; --d) {
            const dimension &outer = p_.dimensions[d];
            const int64_t i = row % outer.count, sum = outer.first + i * outer.step;
            row /= outer.count;
            z += i * outer.z_stride;
            const int64_t lowest = std::max<int64_t>(0, sum - (outer.b_count - 1));
            ranges[d] = {lowest, std::min(outer.a_count - 1, sum), sum, lowest};
        }
        strip_block<R> block(sum_, sums, longest_segment, count);
        do
            add_rows(block, ranges, first);
        while (advance(ranges));
        block.flush();
        write(sums, z, count);
    }

    bool advance(outer_range *ranges) const noexcept
    {
        for (int d = p_.rank - 2; d >= 0; --d) {
            if (ranges[d].place++ < ranges[d].last)
                return true;
            ranges[d].place = ranges[d].first;
        }
        return false;
    }

    void add_rows(strip_block<R> &block, const outer_range *ranges, int64_t first) const noexcept
    {
        int64_t a_outer = 0, b_outer = 0;
        for (int d = 0; d < p_.rank - 1; ++d) {
            a_outer = a_outer * p_.dimensions[d].a_count + ranges[d].place;
            b_outer = b_outer * p_.dimensions[d].b_count + ranges[d].sum - ranges[d].place;
        }
        const dimension &inner = p_.inner();
        for (int64_t phase = 0; phase < a_.phases; ++phase) {
            const int64_t sum = inner.first - phase;
            const int64_t b_phase = (sum % inner.step + inner.step) % inner.step;
            if (b_phase < b_.phases)
                block.add(a_, a_.row(a_outer, phase), a_.length(phase), b_, b_.row(b_outer, b_phase),
                          b_.length(b_phase), (sum - b_phase) / inner.step + first);
        }
    }

    void write(const R *sums, T *z, int64_t count) const noexcept
    {
        using real = typename parts_of<T>::real;
        for (int64_t i = 0; i < count; ++i) {
            real *to = reinterpret_cast<real *>(z + i * p_.inner().z_stride);
            for (int part = 0; part < parts; ++part)
                to[part] = static_cast<real>(sums[part * longest_segment + i]);
        }
    }

    const problem<T> &p_;
    const packed_rows<R> &a_, &b_;
    strip_sum<R> sum_;
    int64_t segment_, segments_;
};

/// Makes that dimension the inner one whose elements lie closest together in z, of those that are long.
template <class T>
void order_dimensions(problem<T> &p) noexcept
{
    int64_t longest = 0;
    for (int d = 0; d < p.rank; ++d)
        longest = std::max(longest, p.dimensions[d].count);
    const int64_t enough = std::min<int64_t>(longest, 64);
    const auto belongs_outside = [=](const dimension &u, const dimension &v) {
        if ((u.count < enough) != (v.count < enough))
            return u.count < enough;
        return std::abs(u.z_stride) > std::abs(v.z_stride);
    };
    for (int d = 1; d < p.rank; ++d)
        for (int e = d; e > 0 && belongs_outside(p.dimensions[e], p.dimensions[e - 1]); --e)
            std::swap(p.dimensions[e], p.dimensions[e - 1]);
}

template <class R>
double bytes_of_rows(const packed_rows<R> &rows, const input_shape &shape) noexcept
{
    return static_cast<double>(rows.row_size * sizeof(R)) * static_cast<double>(rows.phases) *
           static_cast<double>(shape.outer());
}

template <class R, class T>
void sum_packed(const problem<T> &p, void *memory) noexcept
{
    const input_shape a_shape = shape_of_a(p), b_shape = shape_of_b(p);
    packed_rows<R> a(a_shape, p.inner().step, 0, parts_of<T>::count);
    packed_rows<R> b(b_shape, p.inner().step, kernel_width<R>, parts_of<T>::count);
    a.memory = static_cast<R *>(memory);
    b.memory = a.memory + a.row_size * a.phases * a_shape.outer();
    a.fill(p.a, a_shape, p.a_conjugated);
    b.fill(p.b, b_shape, p.b_conjugated);
    direct_sums<R, T>(p, a, b).run();
}

/// The part of the problem that has only one wanted element in the inner dimension
template <class T>
problem<T> single_element(const problem<T> &p, int64_t i) noexcept
{
    problem<T> one = p;
    dimension &inner = one.inner();
    one.z += i * inner.z_stride;
    inner.first += i * inner.step;
    inner.step = inner.count = 1;
    one.trim(one.rank - 1);
    return one;
}

} // namespace

template <class R, class T>
bool convolve_directly(problem<T> p) noexcept
{
    order_dimensions(p);
    p.put_smaller_first();
    const bool one_by_one = p.inner().step > 1 && p.inner().count < few;
    const int64_t step = one_by_one ? 1 : p.inner().step;
    const input_shape a = shape_of_a(p), b = shape_of_b(p);
    const scratch memory(bytes_of_rows(packed_rows<R>(a, step, 0, parts_of<T>::count), a) +
                         bytes_of_rows(packed_rows<R>(b, step, kernel_width<R>, parts_of<T>::count), b));
    if (!memory.as<R>())
        return false;
    if (one_by_one)
        for (int64_t i = 0; i < p.inner().count; ++i)
            sum_packed<R>(single_element(p, i), memory.as<R>());
    else
        sum_packed<R>(p, memory.as<R>());
    return true;
}

// Times of one processor; only their ratio to those of the transforms matters. Most depends on how many
// products there are, but tiles that reach over an end of a row take longer, and so do short rows.
template <class R, class T>
double direct_cost(const problem<T> &p) noexcept
{
    constexpr int parts = parts_of<T>::count;
    constexpr double product = sizeof(R) * (parts == 2 ? 0.018 : 0.0073);
    constexpr double tile = 5 * parts, masked = 7 * parts, element = 0.5 * parts;
    double rows = 1;
    for (int d = 0; d < p.rank - 1; ++d)
        rows *= products(p.dimensions[d]);
    const double moved =
        p.elements(&dimension::a_count) + p.elements(&dimension::b_count) + p.elements(&dimension::count);
    const dimension &inner = p.inner();
    const double tiles = static_cast<double>((inner.count - 1) / kernel_width<R> + 1);
    const double ends = 2 * static_cast<double>(std::min({inner.a_count, inner.b_count, inner.count}));
    return rows * (product * products(inner) + tile * tiles + masked * ends) + element * moved;
}

template bool convolve_directly<float>(problem<float>) noexcept;
template bool convolve_directly<double>(problem<float>) noexcept;
template bool convolve_directly<double>(problem<double>) noexcept;
template bool convolve_directly<float>(problem<std::complex<float>>) noexcept;
template bool convolve_directly<double>(problem<std::complex<float>>) noexcept;
template bool convolve_directly<double>(problem<std::complex<double>>) noexcept;
template double direct_cost<float>(const problem<float> &) noexcept;
template double direct_cost<double>(const problem<float> &) noexcept;
template double direct_cost<double>(const problem<double> &) noexcept;
template double direct_cost<float>(const problem<std::complex<float>> &) noexcept;
template double direct_cost<double>(const problem<std::complex<float>> &) noexcept;
template double direct_cost<double>(const problem<std::complex<double>> &) noexcept;

} // namespace xkl::core::conv
