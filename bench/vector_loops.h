// What the vector math routines are timed against: the same function over the same vectors, by others.
#pragma once

#include <cstdint>

/// One vector; functions of one argument leave b alone. SLEEF's read and write whole registers: vectors
/// have room for one more.
template <class R>
using vector_loop = void (*)(int64_t n, const R *a, const R *b, R *r);

struct loops_of {
    const char *function; // Exp
    vector_loop<double> in_double;
    vector_loop<float> in_float;
};

// One call of the C library an element; with the compiler's vectors over glibc's vector library; with the
// widest vectors of SLEEF, of both its accuracies; and where glibc has no vectors, one call an element.
// Each gives nullptr for a function that is not there.
const loops_of *libm_loops(const char *function);
const loops_of *compiler_loops(const char *function);
const loops_of *sleef_loops_1ulp(const char *function);
const loops_of *sleef_loops_4ulp(const char *function);
const loops_of *scalar_loops(const char *function);

template <int Count>
const loops_of *find_loops(const loops_of (&all)[Count], const char *function)
{
    for (const loops_of &each : all)
        if (__builtin_strcmp(each.function, function) == 0)
            return &each;
    return nullptr;
}
