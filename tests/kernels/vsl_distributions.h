// Random streams and distributions of the kernel library, called as its frames call them.
#pragma once

#include "xkl_vsl_types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <dlfcn.h>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vsl {

inline void *library_symbol(const std::string &name)
{
    static void *const library = dlopen(KERNEL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error(dlerror());
    void *const symbol = dlsym(library, name.c_str());
    if (!symbol)
        throw std::runtime_error("no kernel " + name);
    return symbol;
}

template <class Function>
Function *kernel(const std::string &name)
{
    return reinterpret_cast<Function *>(library_symbol(name));
}

/// The instruction set that runs, at most that one: what is asked for if the processor has it
inline int limit_set(int set)
{
    return kernel<int32_t(int32_t)>("xkl_vsl_kernel_LimitSet")(set);
}
constexpr int newest_set = 2;

/// A caller's buffer that is read again and again as it is
inline int repeat(VSLStreamStatePtr, int *, double *, int *, int *most, int *)
{
    return *most;
}

/// A stream that ends with its scope
class stream {
  public:
    explicit stream(int32_t generator = VSL_BRNG_MT19937, uint32_t seed = 7777)
    {
        const auto make = kernel<int32_t(void **, int32_t, int32_t, const uint32_t *)>("__vslNewStreamEx");
        if (make(&handle_, generator, 1, &seed) < 0)
            throw std::runtime_error("no stream");
    }
    /// Over the caller's numbers of [0, 1)
    explicit stream(const std::vector<double> &numbers, dUpdateFuncPtr refill = repeat)
    {
        const auto make = kernel<int32_t(void **, int32_t, const double *, double, double, dUpdateFuncPtr)>(
            "__vsldNewAbstractStream");
        if (make(&handle_, static_cast<int32_t>(numbers.size()), numbers.data(), 0, 1, refill) < 0)
            throw std::runtime_error("no abstract stream");
    }
    ~stream() { kernel<int32_t(void **)>("__vslDeleteStream")(&handle_); }
    stream(const stream &) = delete;
    stream &operator=(const stream &) = delete;

    void *handle() { return handle_; }

  private:
    void *handle_ = nullptr;
};

/// A kernel with its method and its parameters: `draw(stream, n, r)` is its status
template <class R>
using generator = std::function<int32_t(stream &, int32_t, R *)>;

template <class R, class... P>
generator<R> with(const std::string &distribution, int32_t method, P... parameters)
{
    const std::string letter = std::is_same_v<R, double> ? "d" : std::is_same_v<R, float> ? "s" : "i";
    const auto function =
        kernel<int32_t(int32_t, void *, int32_t, R *, P...)>("_vsl" + letter + "Rng" + distribution);
    return [=](stream &s, int32_t n, R *r) { return function(method, s.handle(), n, r, parameters...); };
}

template <class R>
std::vector<R> drawn(const generator<R> &draw, stream &s, int32_t n, size_t each = 1)
{
    std::vector<R> r(static_cast<size_t>(n) * each);
    EXPECT_EQ(draw(s, n, r.data()), VSL_STATUS_OK);
    return r;
}

} // namespace vsl
