// A descriptor for tests of the frames: its operations answer from fields that a test fills in, and note what
// they were told.
#pragma once

#include "dft/descriptor.h"
#include "recorder.h"

#include <ostream>
#include <string>
#include <vector>

/// Everything here is in the core's order, the first dimension fastest.
struct fake_descriptor {
    DFTI_DESCRIPTOR head; // first: handles are its address

    words lengths, input_strides, output_strides, forward_strides, backward_strides;
    int64_t count = 1, dimension = 0, thread_limit = 0;
    int64_t input_distance = 0, output_distance = 0, forward_distance = 0, backward_distance = 0;
    std::string name;
    int32_t commit_result = 0;          // what commit answers
    int32_t compute_result = 0;         // what computations answer
    int32_t result = 0;                 // what every other operation answers
    fake_descriptor *to_copy = nullptr; // what copy hands out

    explicit fake_descriptor(int32_t rank = 1);
    fake_descriptor(const fake_descriptor &) = delete;

    DFTI_DESCRIPTOR_HANDLE handle() { return &head; }
};

/// One call of an operation or a compute routine: its name, and the words that it was given.
struct operation_call {
    std::string name;
    DFTI_DESCRIPTOR_HANDLE handle;
    words arguments;

    bool operator==(const operation_call &) const = default;
};

/// What a failed test shows.
void PrintTo(const operation_call &call, std::ostream *out);

/// All calls of all fake descriptors, in order; emptied by the tests.
extern std::vector<operation_call> operation_calls;

/// An operations table like the fake's own, to be changed by a test.
xkl_dft_operations fake_operations();

/// Both compute routines, as a commit leaves them.
void make_committed(fake_descriptor &descriptor);
