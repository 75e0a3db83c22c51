// The argument tests of BLAS, one structure a shape of argument list. Tests stand in the order in which
// they are made; the number returned is the place of the bad argument, and later arguments are not looked
// at. Letters is inline_letters on a frame's quiet path and core_letters in the exported checker
// (frame/letters.h).
#pragma once

#include "blas/checks_batch.h"
#include "blas/checks_batch_strided.h"
#include "blas/checks_extensions.h"
#include "blas/checks_level2.h"
#include "blas/checks_level3.h"
