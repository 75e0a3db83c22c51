// What the vector math routines are timed against: the same function over the same vectors, by others.
#pragma once

#include <cstdint>

/// One vector; functions of one argument leave b alone. SLEEF's read and write whole registers: vectors have room for one
/// more.
template <class R>
using vector_loop = void (*)(int64_t n, const R *a, const R *b, R *r);

struct loops_of {
    const char *function; // Exp
    vector_loop<double> in_double;
    vector_loop<float> in_float;
};

/// nullptr, if a function is not there
const loops_of *libm_loops(const char *function);     // one call of the C library an element
const loops_of *compiler_loops(const char *function); // the compiler's vectors over glibc's vector library
const loops_of *
sleef_loops_1ulp(const char *function); // SLEEF called with the widest vectors of the machine
const loops_of *sleef_loops_4ulp(const char *function);
const loops_of *
boost_loops(const char *function); // one call of Boost.Math, for what the C library does not have

template <int Count>
const loops_of *find_loops(const loops_of (&all)[Count], const char *function)
{
    for (const loops_of &each : all)
        if (__builtin_strcmp(each.function, function) == 0)
            return &each;
    return nullptr;
}
