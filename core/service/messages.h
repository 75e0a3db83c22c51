// The numbered messages. Texts live in one catalogue so that the libraries above print by number and hold
// no text.
#pragma once

namespace xkl::core {

enum message_number : int {
    message_no_working_directory = 1,
    message_no_kernel_library = 771,
    message_no_kernel = 772,
    message_no_transform = 780,
    message_missing_entry = 790,
    message_bad_argument = 791,
    message_no_memory_for_copy = 792,
    message_not_our_block = 793,
    message_trace_file = 794,
    message_bad_branch = 795,
};

// Adds the loader's reason to the text about a library that could not be opened: message_no_kernel_library,
// or message_no_transform, which says then that the transform module is missing. The first reason stays.
void explain_message(message_number number, const char *reason) noexcept;

} // namespace xkl::core
