// Arithmetic of real and complex numbers: Add, Sub, Mul, Div, Sqr, Abs, Conj, MulByConj.
//
// A result that is infinite though no argument is overflowed; one that is zero or denormal though no
// argument is zero underflowed, but for sums, which are exact there.
#pragma once

#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class R>
struct add_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return a + b;
    }
    XKL_HOT unsigned suspicious(V, V, V y) const { return which_are_of<not_finite>(y); }
    status settle(R a, R b, R &y) const { return overflow_or_nan(y, a, b); }
};

template <class R>
struct sub_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return a - b;
    }
    XKL_HOT unsigned suspicious(V, V, V y) const { return which_are_of<not_finite>(y); }
    status settle(R a, R b, R &y) const { return overflow_or_nan(y, a, b); }
};

template <class R>
struct mul_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return a * b;
    }
    XKL_HOT unsigned suspicious(V a, V b, V y) const
    {
        return abnormal(y, which_are<equal>(a, R(0)) | which_are<equal>(b, R(0)));
    }
    status settle(R a, R b, R &y) const
    {
        return tiny(y) && !infinite(a) && !infinite(b) ? underflow : overflow_or_nan(y, a, b);
    }
};

template <class R>
struct div_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return a / b;
    }
    XKL_HOT unsigned suspicious(V a, V b, V y) const
    {
        return abnormal(y, which_are<equal>(a, R(0)) | which_are_of<infinities>(b));
    }
    status settle(R a, R b, R &y) const
    {
        if (tiny(y))
            return underflow;
        return infinite(y) && b == 0 && !infinite(a) ? singularity : overflow_or_nan(y, a, b);
    }
};

template <class R>
struct sqr_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a) const
    {
        return a * a;
    }
    XKL_HOT unsigned suspicious(V a, V y) const { return abnormal(y, which_are<equal>(a, R(0))); }
    status settle(R a, R &y) const { return tiny(y) ? underflow : overflow_or_nan(y, a); }
};

template <class R>
struct abs_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return absolute(a);
    }
};

template <class R>
struct inv_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a) const
    {
        return 1 / a;
    }
    XKL_HOT unsigned suspicious(V a, V y) const { return abnormal(y, which_are_of<infinities>(a)); }
    status settle(R a, R &y) const
    {
        if (tiny(y))
            return underflow;
        return a == 0 ? singularity : overflow_or_nan(y, a);
    }
};

template <class R>
struct sqrt_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a) const
    {
        return square_root(a);
    }
    XKL_HOT unsigned suspicious_arguments(V a) const { return which_are<below>(a, R(0)); }
    status settle(R, R &) const { return domain_error; }
};

template <class R>
struct complex_conj_function {
    template <accuracy>
    XKL_HOT complex_vec<R> value(complex_vec<R> a) const
    {
        return {a.re, -a.im};
    }
};

template <class R>
struct complex_add_function {
    using V = complex_vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return {a.re + b.re, a.im + b.im};
    }
    XKL_HOT auto suspicious(V, V, V y) const { return is_not_finite(y.re) | is_not_finite(y.im); }
    status settle(complex<R> a, complex<R> b, complex<R> &y) const
    {
        return worse(overflow_or_nan(y.re, a.re, b.re), overflow_or_nan(y.im, a.im, b.im));
    }
};

template <class R>
struct complex_sub_function {
    using V = complex_vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return {a.re - b.re, a.im - b.im};
    }
    XKL_HOT auto suspicious(V, V, V y) const { return is_not_finite(y.re) | is_not_finite(y.im); }
    status settle(complex<R> a, complex<R> b, complex<R> &y) const
    {
        return worse(overflow_or_nan(y.re, a.re, b.re), overflow_or_nan(y.im, a.im, b.im));
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
