// The computations that the Fortran module calls: one for each direction, whatever the types of its arrays.
#pragma once

#include "fft/descriptor.h"

#include <type_traits>

namespace xkl::core {

template <class Element>
constexpr int32_t precision_of = sizeof(Element) == (std::is_floating_point_v<Element> ? 4 : 8)
                                     ? DFTI_SINGLE
                                     : DFTI_DOUBLE;

// The arrays must be as many as the descriptor computes with, and of its precision. The transform refuses
// null ones.
template <class First, class... Rest>
int32_t compute(xkl_dft_compute *DFTI_DESCRIPTOR::*direction, DFTI_DESCRIPTOR *const *handle, First *x,
                Rest *...rest)
{
    if (!handle)
        return DFTI_INCONSISTENT_CONFIGURATION;
    const fft::descriptor *of = fft::live_descriptor(*handle);
    if (!of)
        return DFTI_BAD_DESCRIPTOR;
    xkl_dft_compute *routine = of->*direction;
    if (!routine)
        return DFTI_INVALID_CONFIGURATION;
    if (of->array_count != 1 + sizeof...(rest) || of->precision != precision_of<First>)
        return DFTI_INCONSISTENT_CONFIGURATION;
    void *arrays[4] = {x, rest...};
    return routine(*handle, arrays[0], arrays[1], arrays[2], arrays[3], nullptr);
}

template <class... Element>
int32_t compute_forward(DFTI_DESCRIPTOR *const *handle, Element *...arrays)
{
    return compute(&DFTI_DESCRIPTOR::forward, handle, arrays...);
}

template <class... Element>
int32_t compute_backward(DFTI_DESCRIPTOR *const *handle, Element *...arrays)
{
    return compute(&DFTI_DESCRIPTOR::backward, handle, arrays...);
}

} // namespace xkl::core
