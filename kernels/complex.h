// A complex element as it lies in memory. Plain data, shared by all instruction sets.
#pragma once

namespace xkl::kernels {

template <class R>
struct complex {
    R re, im;
};

} // namespace xkl::kernels
