// What the routines written here share in taking arguments: checks in the order of the list, answers to
// questions about workspace, and the tuning that the rest of LAPACK asks for as well.
#pragma once

#include "blas/report.h"
#include "elements.h"

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <limits>

extern "C" int64_t ilaenv_(const int64_t *ispec, const char *name, const char *opts, const int64_t *n1,
                           const int64_t *n2, const int64_t *n3, const int64_t *n4, int64_t name_length,
                           int64_t opts_length);

namespace xkl::core {

struct argument_check {
    bool refused;
    int64_t position;
};

/// Reports the first argument that is refused. What comes back belongs in info: minus its position, or 0.
template <class T>
int64_t refuse(const char *routine, std::initializer_list<argument_check> checks)
{
    for (const argument_check &each : checks)
        if (each.refused) {
            report(routine, letter_of<T>, each.position);
            return -each.position;
        }
    return 0;
}

inline bool is_one_of(char option, const char *letters)
{
    for (; *letters; ++letters)
        if (is(option, *letters))
            return true;
    return false;
}

/// A size as it is stored into a workspace: single precision must not make it smaller.
template <class T>
T work_size(int64_t size)
{
    using real = real_of<T>;
    const real rounded = static_cast<real>(size);
    return T(static_cast<int64_t>(rounded) < size
                 ? std::nextafter(rounded, std::numeric_limits<real>::max())
                 : rounded);
}

/// The size that another routine stored.
template <class T>
int64_t size_in(T stored)
{
    return static_cast<int64_t>(std::real(stored));
}

/// A tuning parameter of a routine, named without its type: GEQRF.
template <class T>
int64_t tuning(int64_t parameter, const char *routine, int64_t n1, int64_t n2)
{
    char name[16] = {letter_of<T>};
    const size_t length = strnlen(routine, sizeof name - 1);
    std::memcpy(name + 1, routine, length);
    const int64_t unused = -1;
    return ilaenv_(&parameter, name, " ", &n1, &n2, &unused, &unused, static_cast<int64_t>(length + 1), 1);
}

} // namespace xkl::core
