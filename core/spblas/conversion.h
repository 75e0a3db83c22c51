// What the converters between storages share: their list of choices and the values of info.
#pragma once

#include "spblas/sorting.h"

namespace xkl::core::spblas {

/// The choices of a conversion, numbered from 1
struct job_list {
    const int64_t *entries;
    int64_t operator()(int number) const { return entries[number - 1]; }
    bool backwards() const { return entries[0] != 0; }
};

/// info for a choice that does not exist
inline int64_t bad_choice(int number)
{
    return -number;
}

inline constexpr int64_t converted = 0, no_room = 1;

inline int64_t elements_in(int64_t lines, const int64_t *starts)
{
    return lines > 0 ? starts[lines] - starts[0] : 0;
}

/// Counts of lines in starts[1] to starts[lines] become starts.
inline void add_up(int64_t lines, int64_t first, int64_t *starts)
{
    starts[0] = first;
    for (int64_t i = 0; i < lines; ++i)
        starts[i + 1] += starts[i];
}

} // namespace xkl::core::spblas
