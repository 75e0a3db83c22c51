// What the generated routines of the FFTW3 interface call.
#pragma once

#include "fftw/execution.h"
#include "fftw/fortran.h"
#include "fftw/planners.h"
#include "fftw/services.h"
