// The library's own complex elements under the names of its public header.
#pragma once

#include "xkl_types.h"

#define LAPACK_COMPLEX_CUSTOM
#define lapack_complex_float XKL_Complex8
#define lapack_complex_double XKL_Complex16
