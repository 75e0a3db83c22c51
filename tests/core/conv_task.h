// Convolution tasks for tests: arrays of any strides, a task that frees itself, and the plain loops.
#pragma once

#include "element_types.h"

#include "core_conv.h"
#include "xkl_vsl_types.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <vector>

namespace conv {

using vector = std::vector<int32_t>;
enum kind : int32_t { convolution = 1, correlation = 2 };

using element_types::all_types, element_types::conjugate, element_types::is_complex, element_types::real_of;

template <class T>
constexpr int32_t domain_of = is_complex<T> ? 2 : 1;
template <class T>
constexpr int32_t precision_of = sizeof(real_of<T>) == 4 ? VSL_CONV_PRECISION_SINGLE
                                                         : VSL_CONV_PRECISION_DOUBLE;

inline int64_t elements_of(const vector &shape)
{
    return std::accumulate(shape.begin(), shape.end(), int64_t{1}, std::multiplies<>());
}

/// Goes to the next place, the last dimension first; false after the last place.
inline bool advance(vector &place, const vector &shape)
{
    for (size_t d = shape.size(); d-- > 0; place[d] = 0)
        if (++place[d] < shape[d])
            return true;
    return false;
}

/// Memory behind an array, with gaps where its strides leave some
template <class T>
struct strided {
    vector shape, strides;
    std::vector<T> memory;

    /// Neighbours in the last dimension
    explicit strided(const vector &of_shape) : shape(of_shape), strides(of_shape.size(), 1)
    {
        for (size_t d = shape.size() - 1; d-- > 0;)
            strides[d] = strides[d + 1] * shape[d + 1];
        memory.resize(static_cast<size_t>(elements_of(shape)));
    }
    /// Any order of dimensions, gaps, and directions
    strided(const vector &of_shape, std::mt19937 &random) : shape(of_shape), strides(of_shape.size())
    {
        std::vector<size_t> order(shape.size());
        std::iota(order.begin(), order.end(), 0u);
        std::shuffle(order.begin(), order.end(), random);
        int64_t step = 1 + random() % 3;
        int64_t end = 1;
        for (const size_t d : order) {
            strides[d] = static_cast<int32_t>(random() % 3 ? step : -step);
            end += (shape[d] - 1) * step;
            step = step * shape[d] + random() % 3;
        }
        memory.resize(static_cast<size_t>(end));
    }
    T &at(const vector &place)
    {
        int64_t address = 0;
        for (size_t d = 0; d < shape.size(); ++d)
            address += int64_t{strides[d]} * (strides[d] < 0 ? place[d] - (shape[d] - 1) : place[d]);
        return memory.at(static_cast<size_t>(address));
    }
    void fill(std::mt19937 &random)
    {
        std::uniform_real_distribution<real_of<T>> number(-1, 1);
        for (T &each : memory)
            if constexpr (is_complex<T>)
                each = {number(random), number(random)};
            else
                each = number(random);
    }
    double norm() const
    {
        double sum = 0;
        for (const T &each : memory)
            sum += static_cast<double>(std::norm(each));
        return std::sqrt(sum);
    }
};

struct settings {
    conv::kind kind = convolution;
    int32_t mode = VSL_CONV_MODE_AUTO;
    vector x{}, y{}, z{};
    vector start{}, decimation{}; // empty where they are not set
    int32_t internal_precision = 0;
    bool fixed = false;
};

class handle {
  public:
    handle() = default;
    ~handle()
    {
        if (task) {
            EXPECT_EQ(xkl_conv_deletetask(&task), VSL_CC_STATUS_OK);
        }
        EXPECT_EQ(task, nullptr);
    }
    handle(const handle &) = delete;
    handle &operator=(const handle &) = delete;

    void *task = nullptr;
};

template <class T>
int32_t create(handle &made, const settings &s, const strided<T> *fixed = nullptr)
{
    const auto rank = static_cast<int32_t>(s.x.size());
    if (fixed)
        return xkl_conv_newtaskx(&made.task, s.kind, 1, s.mode, domain_of<T>, precision_of<T>, rank,
                                 s.x.data(), s.y.data(), s.z.data(), fixed->memory.data(),
                                 fixed->strides.data());
    return xkl_conv_newtask(&made.task, s.kind, 1, s.mode, domain_of<T>, precision_of<T>, rank, s.x.data(),
                            s.y.data(), s.z.data());
}

inline void edit(const handle &made, const settings &s)
{
    const auto set = [&](int32_t code, const int32_t *values) {
        ASSERT_EQ(xkl_conv_edittask(made.task, code, values), VSL_CC_STATUS_OK);
    };
    if (!s.start.empty())
        set(5, s.start.data());
    if (!s.decimation.empty())
        set(6, s.decimation.data());
    if (s.internal_precision)
        set(9, &s.internal_precision);
}

template <class T>
int32_t execute(const handle &made, const strided<T> *x, const strided<T> &y, strided<T> &z)
{
    if (!x)
        return xkl_conv_execx(made.task, y.memory.data(), y.strides.data(), z.memory.data(),
                              z.strides.data());
    return xkl_conv_exec(made.task, x->memory.data(), x->strides.data(), y.memory.data(), y.strides.data(),
                         z.memory.data(), z.strides.data());
}

/// One element by the definition, summed in the largest precision
template <class T>
std::complex<long double> plain_sum(const settings &s, strided<T> &x, strided<T> &y, const vector &place)
{
    const size_t rank = s.x.size();
    std::complex<long double> sum = 0;
    vector j(rank), k(rank);
    do {
        bool inside = true;
        for (size_t d = 0; d < rank; ++d) {
            const int32_t unset = s.kind == correlation ? 1 - s.x[d] : 0;
            const int32_t index = (s.start.empty() ? unset : s.start[d]) +
                                  place[d] * (s.decimation.empty() ? 1 : s.decimation[d]);
            k[d] = s.kind == correlation ? index + j[d] : index - j[d];
            inside = inside && k[d] >= 0 && k[d] < s.y[d];
        }
        if (inside) {
            const T left = s.kind == correlation ? conjugate(x.at(j)) : x.at(j);
            sum += std::complex<long double>(left) * std::complex<long double>(y.at(k));
        }
    } while (advance(j, s.x));
    return sum;
}

/// Compares z with the plain sums; in tolerances of `relative` times the norms, and of its own precision.
template <class T>
void expect_sums(const settings &s, strided<T> &x, strided<T> &y, strided<T> &z, double relative)
{
    const double scale = x.norm() * y.norm(), own = 2 * std::numeric_limits<real_of<T>>::epsilon();
    vector place(s.z.size());
    do {
        const std::complex<long double> wanted = plain_sum(s, x, y, place);
        const double error = static_cast<double>(std::abs(std::complex<long double>(z.at(place)) - wanted));
        ASSERT_LE(error, relative * scale + own * static_cast<double>(std::abs(wanted)))
            << "at " << testing::PrintToString(place);
    } while (advance(place, s.z));
}

} // namespace conv
