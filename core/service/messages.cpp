// The catalogue of numbered messages, and the one way in which the core prints them.
#include "service/messages.h"

#include "service/service_entries.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace xkl::core {
namespace {

struct message {
    int number;
    const char *text; // each "%s" takes the next argument
};

// Sorted by number. 774 to 784 are the texts of the Fourier transform statuses, handed out without being
// printed.
constexpr message catalogue[] = {
    {message_no_working_directory, "the working directory cannot be read while %s is loaded; start the "
                                   "program in a directory that it may read"},
    {message_no_kernel_library,
     "the vector math kernel library libxkl_kernels.so could not be loaded; put it beside "
     "libxkl_core.so, or name its file in the environment variable XKL_KERNELS"},
    {message_no_kernel,
     "the vector math kernel library has no kernel %s; install the libxkl_kernels.so that belongs "
     "to this version"},
    {774, "no error"},
    {775, "not enough memory for the transform"},
    {776, "the descriptor's configuration is not valid, or it has not been committed"},
    {777, "the descriptor's settings contradict each other, or an argument is not valid"},
    {779, "this is not a descriptor, or it has been freed"},
    {message_no_transform, "this transform is not implemented"},
    {781, "internal error of the transform library"},
    {782, "the number of threads does not fit what the descriptor was committed for"},
    {783, "a length is too large for this transform"},
    {784, "unknown error"},
    {message_missing_entry,
     "the core library does not provide %s yet; avoid the routine, or put a libxkl_core.so that "
     "provides it first in the library search path (`xkl info --missing` lists such entries)"},
    {message_bad_argument, "argument %s of %s is not valid; the call was not carried out"},
    {message_no_memory_for_copy, "not enough memory for a temporary copy in %s; the call was not carried "
                                 "out (free memory, or pass column-major "
                                 "matrices, which need no copy)"},
    {message_not_our_block, "xkl_free was given %s, which no routine of this library allocated or which "
                            "was freed before; it is left alone"},
    {message_trace_file, "the trace file %s cannot be opened; trace lines go to standard output"},
    {message_bad_branch,
     "XKL_CBWR=%s names no branch that this processor runs; it is ignored (XKL_CBWR=COMPATIBLE "
     "works everywhere)"},
};

// The text of a number once a library could not be opened. The first 80 characters say what to do: users of
// descriptors may keep no more.
struct explained_message {
    message_number number;
    const char *text;
    std::atomic<const char *> explained{nullptr}; // written once, by the first failure; never freed
};
explained_message explained_messages[] = {
    {message_no_kernel_library, nullptr},
    {message_no_transform,
     "libxkl_core_fft.so not loaded: put it beside libxkl_core.so or set XKL_CORE_FFT"},
};

const char *catalogue_text(int number) noexcept
{
    const auto *found = std::ranges::lower_bound(catalogue, number, {}, &message::number);
    return found != std::end(catalogue) && found->number == number ? found->text : nullptr;
}

const char *message_text(int number) noexcept
{
    for (const explained_message &each : explained_messages)
        if (const char *text = each.explained.load(std::memory_order_acquire);
            text && each.number == number)
            return text;
    return catalogue_text(number);
}

// Arguments take the place of "%s" in their order; a missing one shows as "?". Nothing else in a text is
// interpreted.
std::string fill(std::string_view text, int count, va_list values)
{
    std::string line;
    for (size_t mark; (mark = text.find("%s")) != std::string_view::npos; text.remove_prefix(mark + 2)) {
        const char *value = count-- > 0 ? va_arg(values, const char *) : nullptr;
        line.append(text.substr(0, mark)).append(value ? value : "?");
    }
    return line.append(text);
}

} // namespace

void explain_message(message_number number, const char *reason) noexcept
{
    explained_message &which = *std::ranges::find(explained_messages, number, &explained_message::number);
    char *text = nullptr;
    if (asprintf(&text, "%s (%s)", which.text ? which.text : catalogue_text(number), reason) < 0)
        return;
    const char *none = nullptr;
    if (!which.explained.compare_exchange_strong(none, text, std::memory_order_acq_rel))
        std::free(text);
}

} // namespace xkl::core

extern "C" {

// Never null: a number without a message gets the text of the unknown error.
const char *xkl_serv_get_msg(int number, int)
{
    const char *text = xkl::core::message_text(number);
    return text ? text : xkl::core::message_text(784);
}

// Arguments are strings. With a nonzero flag the line goes to standard error, else to standard output.
// Returns 0, or -1 for a number without a message.
int xkl_serv_print(int flag, int number, int count, ...)
{
    va_list values;
    va_start(values, count);
    const std::string line = xkl::core::fill(xkl_serv_get_msg(number, 0), count, values);
    va_end(values);
    std::fprintf(flag ? stderr : stdout, "XKL: %s\n", line.c_str());
    return xkl::core::message_text(number) ? 0 : -1;
}
}
