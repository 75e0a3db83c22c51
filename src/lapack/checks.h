// The argument tests of LAPACK, one structure a shape of argument list; what blas/checks.h says of tests
// and letters holds here too. Only the routines that the tables call `checked` are tested here: all others
// are tested by the core, and what it finds reaches the same reporter.
#pragma once

#include "lapack/checks_eigen.h"
#include "lapack/checks_factor.h"
#include "lapack/checks_multiply.h"
#include "lapack/checks_tridiagonal.h"
