// What transforms are compared with: sums over all elements in long double, and layouts written down
// element by element.
#pragma once

#include "core_dfti.h"
#include "dft/descriptor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

namespace fft_model {

using value = std::complex<long double>;
using indices = std::vector<int64_t>; // dimension 0 first, the fastest

inline int64_t product(const indices &lengths)
{
    return std::accumulate(lengths.begin(), lengths.end(), int64_t{1}, std::multiplies<>());
}

// Calls visit(k, place) for every element, place counting them with dimension 0 fastest.
template <class Visit>
void for_each_index(const indices &lengths, const Visit &visit)
{
    indices k(lengths.size(), 0);
    for (int64_t place = 0; place < product(lengths); ++place) {
        visit(k, place);
        for (size_t i = 0; i < k.size() && ++k[i] == lengths[i]; ++i)
            k[i] = 0;
    }
}

// The sums of the definition, one dimension after the other; the sign is that of the exponent.
inline std::vector<value> transform(std::vector<value> x, const indices &lengths, int sign)
{
    int64_t stride = 1;
    for (const int64_t n : lengths) {
        std::vector<value> roots(static_cast<size_t>(n)), line(static_cast<size_t>(n));
        for (int64_t j = 0; j < n; ++j)
            roots[static_cast<size_t>(j)] =
                std::polar(1.0L, sign * 2 * std::numbers::pi_v<long double> * static_cast<long double>(j) /
                                     static_cast<long double>(n));
        for (int64_t start = 0; start < static_cast<int64_t>(x.size()); ++start) {
            if (start / stride % n != 0)
                continue;
            for (int64_t k = 0; k < n; ++k) {
                value sum = 0;
                for (int64_t j = 0; j < n; ++j)
                    sum +=
                        x[static_cast<size_t>(start + j * stride)] * roots[static_cast<size_t>(j * k % n)];
                line[static_cast<size_t>(k)] = sum;
            }
            for (int64_t k = 0; k < n; ++k)
                x[static_cast<size_t>(start + k * stride)] = line[static_cast<size_t>(k)];
        }
        stride *= n;
    }
    return x;
}

// Where the elements of one side are.
struct placing {
    int64_t offset = 0;
    indices strides;
    int64_t distance = 0;

    int64_t at(const indices &k, int64_t batch) const
    {
        return std::inner_product(k.begin(), k.end(), strides.begin(), offset + batch * distance);
    }
    std::vector<int64_t> vector() const
    {
        std::vector<int64_t> all{offset};
        all.insert(all.end(), strides.begin(), strides.end());
        return all;
    }
};

// A layout that keeps all elements apart: the dimensions and the batch in any order, gaps between them, some
// running backwards.
inline placing random_placing(std::mt19937 &random, const indices &extents, int64_t batch, bool backwards)
{
    indices all = extents;
    all.push_back(batch);
    std::vector<size_t> order(all.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::ranges::shuffle(order, random);
    indices strides(all.size());
    placing made;
    made.offset = static_cast<int64_t>(random() % 4);
    int64_t stride = 1 + static_cast<int64_t>(random() % 2);
    for (const size_t i : order) {
        strides[i] = stride;
        stride *= all[i];
        stride += static_cast<int64_t>(random() % 3);
        if (backwards && random() % 5 == 0) {
            made.offset += strides[i] * (all[i] - 1);
            strides[i] = -strides[i];
        }
    }
    made.distance = strides.back();
    strides.pop_back();
    made.strides = strides;
    return made;
}

// One real of an array: which number stands there.
struct real_place {
    int64_t place;
    long double number;
};

// The packed formats, element by element as their tables show them.
class packed_rows {
  public:
    enum part { real, imaginary, zero };
    struct row {
        int64_t k;
        part of;
    };

    packed_rows(int32_t format, int64_t n)
    {
        const auto add = [&](int64_t k, part of) { rows_.push_back({k, of}); };
        const bool even = n % 2 == 0;
        add(0, real);
        if (format == DFTI_CCS_FORMAT)
            add(0, zero);
        if (format == DFTI_PERM_FORMAT && even)
            add(n / 2, real);
        for (int64_t k = 1; 2 * k < n; ++k) {
            add(k, real);
            add(k, imaginary);
        }
        if (format != DFTI_PERM_FORMAT && even)
            add(n / 2, real);
        if (format == DFTI_CCS_FORMAT && even)
            add(n / 2, zero);
    }
    const std::vector<row> &rows() const { return rows_; }
    int64_t size() const { return static_cast<int64_t>(rows_.size()); }

  private:
    std::vector<row> rows_;
};

// All reals of a packed spectrum of one or two dimensions.
inline std::vector<real_place> packed_places(int32_t format, const indices &lengths,
                                             const std::vector<value> &spectrum, const placing &where,
                                             int64_t batch)
{
    std::vector<real_place> all;
    const packed_rows first(format, lengths[0]);
    const auto number = [&](int64_t j, int64_t k, packed_rows::part of) {
        const value z = spectrum[static_cast<size_t>(j + k * lengths[0])];
        return of == packed_rows::zero ? 0 : of == packed_rows::real ? z.real() : z.imag();
    };
    for (int64_t i = 0; i < first.size(); ++i) {
        const auto [j, part] = first.rows()[static_cast<size_t>(i)];
        if (lengths.size() == 1) {
            all.push_back({where.at({i}, batch), number(j, 0, part)});
            continue;
        }
        if (j != 0 && 2 * j != lengths[0]) {
            for (int64_t k = 0; k < lengths[1]; ++k)
                all.push_back({where.at({i, k}, batch), number(j, k, part)});
            continue;
        }
        const packed_rows second(format, lengths[1]);
        for (int64_t l = 0; l < second.size(); ++l) {
            const auto [k, of] = second.rows()[static_cast<size_t>(l)];
            all.push_back({where.at({i, l}, batch), part == packed_rows::zero ? 0 : number(j, k, of)});
        }
    }
    return all;
}

// A descriptor, with the calls that the interface library makes.
class descriptor {
  public:
    descriptor(int32_t precision, int32_t domain, const indices &lengths)
    {
        const auto rank = static_cast<int64_t>(lengths.size());
        status = xkl_dft_dfti_create_descriptor_highd(&handle, &precision, &domain, &rank, lengths.data());
    }
    ~descriptor()
    {
        if (handle)
            xkl_dft_dfti_free_descriptor_external(&handle);
    }
    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;

    int32_t set(int32_t parameter, int64_t value)
    {
        return xkl_dft_dfti_set_value_intval(&handle, &parameter, &value);
    }
    int64_t get(int32_t parameter) const
    {
        int64_t value = INT64_MIN;
        xkl_dft_dfti_get_value_intval(&handle, &parameter, &value);
        return value;
    }
    void scale(double forward, double backward)
    {
        handle->operations->set_scale(handle, DFTI_FORWARD_SCALE, forward);
        handle->operations->set_scale(handle, DFTI_BACKWARD_SCALE, backward);
    }
    void strides(const placing &in, const placing &out)
    {
        handle->operations->set_input_strides(handle, in.vector().data());
        handle->operations->set_output_strides(handle, out.vector().data());
    }
    void distances(const placing &in, const placing &out)
    {
        set(DFTI_INPUT_DISTANCE, in.distance);
        set(DFTI_OUTPUT_DISTANCE, out.distance);
    }
    int32_t commit() { return handle->operations->commit(handle); }
    int32_t compute(bool forward, void *x, void *y = nullptr, void *z = nullptr, void *w = nullptr) const
    {
        return (forward ? handle->forward : handle->backward)(handle, x, y, z, w, nullptr);
    }

    DFTI_DESCRIPTOR *handle = nullptr;
    int32_t status;
};

} // namespace fft_model
