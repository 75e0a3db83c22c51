// Makes a routine's extern "C" entries in its types. Only a macro can put a type's letter into a name;
// everything behind the name is a template. Each file defines its entries as macros of an element type and
// a letter.
#pragma once

#include "elements.h"

#define XKL_FOR_S_D(ENTRY)                                                                                 \
    ENTRY(float, s)                                                                                        \
    ENTRY(double, d)
#define XKL_FOR_C_Z(ENTRY)                                                                                 \
    ENTRY(xkl::core::complex8, c)                                                                          \
    ENTRY(xkl::core::complex16, z)
#define XKL_FOR_ALL_TYPES(ENTRY)                                                                           \
    XKL_FOR_S_D(ENTRY)                                                                                     \
    XKL_FOR_C_Z(ENTRY)
