// The recording core as the FFTW3 interface meets it: descriptors and real transforms that note every step in
// words, count what lives, and fail where a test wants them to.
#pragma once

#include "recorder.h"

#include <string>
#include <vector>

struct fftw_core {
    /// "create dcmd 4 3" (lengths in C order), "set 7 2", "set 12 0 3 1" (offset, strides in C order),
    /// "commit", "free", "forward a b" with letters for addresses, "r2r ..."
    std::vector<std::string> steps;
    int failing_step = 0;  // the step of this number, from 1, fails
    bool harmless = false; // whether the status of the failing step is one of success after all
    int threads = 5;       // what the core says about the most threads of a domain
    int live = 0;          // descriptors and real transforms

    /// Starts a new recording, in which the core serves memory.
    fftw_core();
    ~fftw_core();
    fftw_core(const fftw_core &) = delete;

    /// Blocks of memory that were handed out and not released.
    static int64_t blocks() { return recorded.allocated; }
    /// Names an address in the steps.
    void name(const void *address, std::string as);
};
