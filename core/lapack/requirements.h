// The checks of arguments that the core makes itself, and what becomes of a bad one: info is minus its
// place, and the error reporter hears of it.
#pragma once

#include "blas/report.h"
#include "elements.h"

#include <initializer_list>

namespace xkl::core {

/// What must hold of the argument in a place, counted from 1
struct requirement {
    int64_t position;
    bool met;
};

/// Whether all requirements are met, asked in their order; info may be null. `?` in the routine's name
/// stands for the letter of its type.
template <class T>
bool accepted(const char *routine, int64_t *info, std::initializer_list<requirement> requirements)
{
    int64_t wrong = 0;
    for (const requirement &each : requirements)
        if (!each.met && wrong == 0)
            wrong = each.position;
    if (info)
        *info = -wrong;
    if (wrong != 0)
        report(routine, letter_of<T>, wrong);
    return wrong == 0;
}

/// The least leading dimension of matrices with so many rows
inline int64_t least_ld(int64_t rows)
{
    return rows > 1 ? rows : 1;
}

} // namespace xkl::core
