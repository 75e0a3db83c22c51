// How checks compare option letters: two ways with one meaning.
//
// A frame proves on its quiet path, inline, that its arguments are good. Only where that proof fails does
// the checker run, with the core's own comparison, and its verdict counts. A check is written once and
// instantiated with both.
#pragma once

#include "core_service.h"

namespace xkl {

/// Inline: clears the bit that tells lower from upper case.
struct inline_letters {
    [[gnu::always_inline]] static bool is(const char *given, char letter)
    {
        return (*given & 0xdf) == letter;
    }
};

/// The core's case-insensitive comparison.
struct core_letters {
    static bool is(const char *given, char letter) { return xkl_serv_lsame(given, &letter, 1, 1) != 0; }
};

/// Whether `given` is one of `letters`, in either case.
template <class Letters, class... L>
[[gnu::always_inline]] inline bool one_of(const char *given, L... letters)
{
    return (Letters::is(given, letters) || ...);
}

} // namespace xkl
