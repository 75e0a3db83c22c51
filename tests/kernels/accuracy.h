// Measures how far a kernel's results are off.
#pragma once

#include "promises.h"

#include <optional>

/// The result that is furthest off, in ULP, and whose it is
struct worst_case {
    double error = -1;
    double a[2] = {}, b[2] = {}; // arguments; imaginary parts are 0 for real ones
    double r[2] = {};            // its result
    int set = 0;                 // instruction set
};

struct measurement {
    worst_case modes[3]; // high, low, enhanced performance
};

struct effort {
    int samples;
    unsigned seed;
};

/// What XKL_ACCURACY_SAMPLES and XKL_ACCURACY_SEED say, else few enough samples for every day
effort wanted_effort();

/// Nothing if the kernel is a stand-in; throws std::runtime_error if there is no reference for the
/// function.
std::optional<measurement> measure(const promise &, const effort &);

std::string describe(const promise &, int mode, const worst_case &);

inline constexpr const char *mode_names[] = {"HA", "LA", "EP"};
