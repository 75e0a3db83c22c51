// Distributions of the kernel library, called as their frames call them.
#pragma once

#include "vsl_library.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

namespace distributions {

/// The instruction set that runs from now on, at most that one: it, if the processor has it
inline int limit_set(int set)
{
    return vsl().limit_set(set);
}
constexpr int newest_set = 2;

/// A caller's buffer that is read again and again as it is
inline int repeat(VSLStreamStatePtr, int *, double *, int *, int *most, int *)
{
    return *most;
}

class stream : public random_stream {
  public:
    explicit stream(int32_t brng = VSL_BRNG_MT19937, uint32_t seed = 7777) : random_stream(brng, {seed}) {}
    /// Over the caller's numbers of [0, 1), which the stream reads where they are
    explicit stream(const std::vector<double> &numbers, dUpdateFuncPtr refill = repeat)
        : random_stream(made_of(numbers, refill))
    {
    }
    explicit stream(std::vector<double> &&) = delete;

  private:
    static VSLStreamStatePtr made_of(const std::vector<double> &numbers, dUpdateFuncPtr refill)
    {
        VSLStreamStatePtr made = nullptr;
        const auto count = static_cast<int32_t>(numbers.size());
        EXPECT_EQ(vsl().of_doubles(&made, count, numbers.data(), 0, 1, refill), VSL_STATUS_OK);
        return made;
    }
};

/// A kernel with its method and its parameters: `draw(stream, n, r)` is its status
template <class R>
using generator = std::function<int32_t(stream &, int32_t, R *)>;

template <class R, class... P>
generator<R> with(const std::string &distribution, int32_t method, P... parameters)
{
    const std::string letter = std::is_same_v<R, double> ? "d" : std::is_same_v<R, float> ? "s" : "i";
    const auto function = vsl_entry<int32_t(int32_t, void *, int32_t, R *, P...)>(
        ("_vsl" + letter + "Rng" + distribution).c_str());
    return [=](stream &s, int32_t n, R *r) { return function(method, s, n, r, parameters...); };
}

template <class R>
std::vector<R> drawn(const generator<R> &draw, stream &s, int32_t n, size_t each = 1)
{
    std::vector<R> r(static_cast<size_t>(n) * each);
    EXPECT_EQ(draw(s, n, r.data()), VSL_STATUS_OK);
    return r;
}

} // namespace distributions
