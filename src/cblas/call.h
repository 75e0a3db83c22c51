// The call from the C interface to the Fortran frame below it, which checks again and traces.
#pragma once

#include "blas_frames.h"
#include "xkl_service.h"

#include <type_traits>

namespace xkl::cblas {

/// The C list says `void` where data is complex. The frame's parameter says which type that is.
template <class Void>
struct complex_data {
    Void *place;
    template <class T>
    operator T *() const
    {
        return static_cast<T *>(place);
    }
};

/// The same for arrays of addresses, one for each matrix of a batch.
template <class Void>
struct complex_data_list {
    Void *const *places;
    template <class T>
    operator T * const *() const
    {
        return reinterpret_cast<T *const *>(places);
    }
};

/// An argument as the frame takes it: values by address, addresses as they are.
template <class T>
requires(!std::is_pointer_v<T>) [[gnu::always_inline]] inline const T *passed(const T &value)
{
    return &value;
}
template <class T>
[[gnu::always_inline]] inline auto passed(T *const &address)
{
    if constexpr (std::is_void_v<T>)
        return complex_data<T>{address};
    else if constexpr (std::is_pointer_v<T> && std::is_void_v<std::remove_pointer_t<T>>)
        return complex_data_list<std::remove_pointer_t<T>>{address};
    else
        return address;
}

/// Calls the routine's frame, which adds the hidden lengths itself.
template <class R, class... A>
[[gnu::always_inline]] inline auto call_frame(const A &...arguments)
{
    return R::frame(passed(arguments)...);
}

template <class E>
constexpr bool is_complex = std::is_class_v<E>;

/// Whether a scalar, which comes as a value or, if complex, as an address, has a real value.
template <class R, class S>
[[gnu::always_inline]] inline bool equals(const S &scalar, int value)
{
    if constexpr (std::is_pointer_v<S>)
        return equals<R>(*static_cast<const typename R::element *>(scalar), value);
    else if constexpr (is_complex<S>)
        return scalar.real == value && scalar.imag == 0;
    else
        return scalar == value;
}

/// The scalar of a group, in an array that is typed if real.
template <class R, class S>
[[gnu::always_inline]] inline auto entry(const S *scalars, int64_t group)
{
    return static_cast<const typename R::element *>(scalars) + group;
}

} // namespace xkl::cblas
