// The numbered messages. Texts live in one catalogue so that the libraries above print by number and hold
// no text.
#pragma once

namespace xkl::core {

enum message_number : int {
    message_no_working_directory = 1,
    message_no_kernel_library = 771,
    message_no_kernel = 772,
    message_missing_entry = 790,
    message_bad_argument = 791,
    message_no_memory_for_copy = 792,
    message_not_our_block = 793,
    message_trace_file = 794,
    message_bad_branch = 795,
};

// Adds the loader's reason to the text of message_no_kernel_library. The first reason stays.
void explain_missing_kernel_library(const char *reason) noexcept;

} // namespace xkl::core
