// The element types as the BLAS part has them, for the templates that serve LAPACK's entries, and those
// entries' prototypes with them.
#pragma once

#include "blas/elements.h"

#include "core_lapack.h"
