// Division of complex numbers as the core's own factorizations want it: without the standard operator's
// care for infinities, which costs a call, and without squares, which leave the range long before the
// quotient does.
#pragma once

#include "elements.h"

#include <cmath>

namespace xkl::core {

template <class R>
R quotient(R a, R b)
{
    return a / b;
}

template <class R>
std::complex<R> quotient(std::complex<R> a, std::complex<R> b)
{
    if (std::abs(b.imag()) <= std::abs(b.real())) {
        const R ratio = b.imag() / b.real(), size = b.real() + b.imag() * ratio;
        return {(a.real() + a.imag() * ratio) / size, (a.imag() - a.real() * ratio) / size};
    }
    const R ratio = b.real() / b.imag(), size = b.imag() + b.real() * ratio;
    return {(a.real() * ratio + a.imag()) / size, (a.imag() * ratio - a.real()) / size};
}

} // namespace xkl::core
