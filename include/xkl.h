/* xkl.h: everything that the library offers. Programs may include the families they use instead. */
#ifndef XKL_H
#define XKL_H

#include "xkl_blas.h"
#include "xkl_cblas.h"
#include "xkl_dfti.h"
#include "xkl_lapack.h"
#include "xkl_lapacke.h"
#include "xkl_matcopy.h"
#include "xkl_service.h"
#include "xkl_solvers.h"
#include "xkl_spblas.h"
#include "xkl_types.h"
#include "xkl_vml.h"
#include "xkl_vsl.h"

#endif
