// Vector math's side of the recording core and of its kernel library: what these answer, and what was
// asked of them.
#pragma once

#include "recorder.h"

#include <bit>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

struct printed_message {
    int flag, number;
    std::vector<std::string> arguments;
};

struct vml_recording {
    std::string kernel_library; // a file; that of the recording kernels when empty, none for "none"
    int loads = 0;              // of the kernel library
    int processor_code = 7;
    int32_t table_index = 1; // of any class
    uint32_t mode = 0x102;
    int32_t status = 0;
    void *callback = nullptr;
    std::vector<printed_message> messages;
    std::string directory; // what had a slash appended
};

/// Not emptied by `reset`: the library asks only once for most of it.
extern vml_recording vml_recorded;

/// An argument among the words.
template <class T>
int64_t word(T argument)
{
    if constexpr (std::is_floating_point_v<T>)
        return recorded_bits(argument);
    else if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<int64_t>(argument);
    else
        return argument;
}
