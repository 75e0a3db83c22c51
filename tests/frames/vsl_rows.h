// The routines of random streams and tasks as tests see them; values, places, statuses and formats are the
// tests' own.
#pragma once

struct vsl_row {
    const char *name;      // vdRngGaussian
    const char *other;     // a second spelling, or nothing
    const char *kernel;    // _vsldRngGaussian
    char element;          // s, d, c, z, i, u, l, - for none
    const char *frame;     // generate, stream, task, own
    int methods;           // of a generator
    bool accurate;         // whether they take the flag
    const char *arguments; // `a:real sigma:real:positive`, without those that all generators have
};

extern const vsl_row vsl_rows[];
extern const int vsl_row_count;
