// Calls of BLAS and LAPACK entries, as the core's own routines make them: by value, one name
// for the four types, hidden lengths left out.
//
//     call(entries::ormqr<T>, 'L', 'N', m, n, k, a, lda, tau, c, ldc, work, lwork, &info);
#pragma once

#include "elements.h"

#include "core_calls.h"

#include <tuple>
#include <type_traits>
#include <utility>

namespace xkl::core {

/// What an entry takes for an argument: an address as it is, a value by the address of a copy, for some
/// routines write over their sizes. LAPACK's entries don't tell which arrays they only read, so that
/// constant ones come in too.
template <class Parameter, class A>
Parameter by_address(A &argument)
{
    if constexpr (std::is_convertible_v<A, Parameter>)
        return argument;
    else if constexpr (std::is_pointer_v<A>)
        return const_cast<Parameter>(argument);
    else
        return &argument;
}

template <class Result, class... Parameters, class... A, size_t... I, size_t... Length>
Result call_in_order(std::index_sequence<I...>, std::index_sequence<Length...>,
                     Result (*entry)(Parameters...), A... arguments)
{
    constexpr int64_t one_letter = 1;
    using types = std::tuple<Parameters...>;
    return entry(by_address<std::tuple_element_t<I, types>>(arguments)...,
                 (static_cast<void>(Length), one_letter)...);
}

template <class Result, class... Parameters, class... A>
Result call(Result (*entry)(Parameters...), A... arguments)
{
    constexpr size_t given = sizeof...(A), hidden = sizeof...(Parameters) - given;
    return call_in_order(std::make_index_sequence<given>(), std::make_index_sequence<hidden>(), entry,
                         arguments...);
}

} // namespace xkl::core
