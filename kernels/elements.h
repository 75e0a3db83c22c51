// Single elements, for what is settled out of the fast path.
#pragma once

#include "call.h"
#include "vector.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class R>
inline bool nan(R x)
{
    return __builtin_isnan(x);
}
template <class R>
inline bool infinite(R x)
{
    return __builtin_isinf(x);
}
/// Zero or denormal
template <class R>
inline bool tiny(R x)
{
    return __builtin_fabs(static_cast<double>(x)) < static_cast<double>(limits<R>::smallest);
}

/// Of two statuses the one that a call reports
inline status worse(status a, status b)
{
    return a == fine ? b : b == fine ? a : a < b ? a : b;
}

/// A NaN that no argument was is a domain error, an infinity that no argument was an overflow.
template <class R, class... Rs>
inline status overflow_or_nan(R y, Rs... arguments)
{
    if (nan(y))
        return (nan(arguments) || ...) ? fine : domain_error;
    return infinite(y) && !(infinite(arguments) || ...) ? overflow : fine;
}

/// f of each lane: for functions without a vector form
template <class F, class V, class... Vs>
XKL_HOT V by_element(const F &f, V a, Vs... others)
{
    V y{};
    for (int lane = 0; lane < lanes<element<V>>; ++lane)
        y[lane] = f(a[lane], others[lane]...);
    return y;
}

} // namespace XKL_ISA
} // namespace xkl::kernels
