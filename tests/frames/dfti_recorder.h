// The recording core's side of the Fourier transforms, besides the generated entries.
#pragma once

#include "recorder.h"

#include "dft/communicators.h"

/// What the core answers about message passing; null at first, and put back by whoever sets it.
extern const xkl_mpi_wrappers *recorded_wrappers;
