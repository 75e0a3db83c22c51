// The call into the core: the visible arguments as they came, for group batches a 0, and a length of 1 for
// each character, whatever lengths the caller passed or left out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace xkl {

/// A hidden length, whatever its place.
template <std::size_t>
constexpr std::int64_t hidden_length = 1;

template <class Row, std::size_t... I, class Entry, class... A>
[[gnu::always_inline]] inline auto call_appending(std::index_sequence<I...>, Entry &entry, A... arguments)
{
    if constexpr (Row::group)
        return entry(arguments..., std::int64_t{0}, hidden_length<I>...);
    else
        return entry(arguments..., hidden_length<I>...);
}

/// Calls `entry` in the core's convention; checkers are called the same way.
template <class Row, class Entry, class... A>
[[gnu::always_inline]] inline auto call_with_lengths(Entry &entry, A... arguments)
{
    return call_appending<Row>(std::make_index_sequence<Row::hidden_lengths>{}, entry, arguments...);
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto call_core(A... arguments)
{
    return call_with_lengths<Row>(Row::core, arguments...);
}

} // namespace xkl
