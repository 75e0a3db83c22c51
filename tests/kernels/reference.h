// What each function should give, in many digits.
#pragma once

#include "number.h"

#include <string>

struct complex_number {
    number re, im;
};

/// Arguments of one element: second vector or scalar in b; `single` for functions that know their type
/// (NextAfter).
struct real_arguments {
    number a, b;
    bool single;
};

struct real_reference {
    const char *name;
    number (*first)(const real_arguments &);
    number (*second)(const real_arguments &) = nullptr; // of the functions with two results
    int samples_divided_by = 1;                         // where a value takes long
};

struct complex_reference {
    const char *name;
    complex_number (*value)(const complex_number &a, const complex_number &b);
};

/// nullptr if there is none
const real_reference *find_real_reference(const std::string &function);
const complex_reference *find_complex_reference(const std::string &function);

/// Scalars of LinearFrac in the order of its arguments
inline constexpr double linear_frac_scalars[] = {1.75, .5, .625, 1.25};
