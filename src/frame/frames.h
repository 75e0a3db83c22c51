// The frames that tables name.
#pragma once

#include "frame/appending.h"
#include "frame/checked.h"
#include "frame/cluster.h"
#include "frame/guarded.h"
#include "frame/registered.h"
#include "frame/solver.h"
#include "frame/through.h"
#include "frame/traced.h"
#include "frame/valued.h"
