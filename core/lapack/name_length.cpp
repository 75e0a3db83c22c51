#include "lapack/name_length.h"

#include "manifest.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

namespace xkl::core {
namespace {

constexpr std::string_view entry_prefix = "xkl_lapack_";
constexpr int64_t longest_name = 20; // SLAORHR_COL_GETRFNP2

char lower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool may_stand_in_a_name(char c) noexcept
{
    c = lower(c);
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// The system reads a signal set from the address before it looks at what to do with it, and there is
// nothing that it could do for -1. Nothing else tells without side effects whether an address can be read.
bool can_be_read(const char *address) noexcept
{
    constexpr long kernel_set_size = 8;
    const int saved = errno;
    const bool unreadable =
        syscall(SYS_rt_sigprocmask, -1, address, nullptr, kernel_set_size) != 0 && errno == EFAULT;
    errno = saved;
    return !unreadable;
}

bool starts_a_page(const char *address) noexcept
{
    constexpr uintptr_t smallest_page = 4096;
    return reinterpret_cast<uintptr_t>(address) % smallest_page == 0;
}

// A text without its end is read behind it on purpose; an address sanitizer must not count that as a fault.
[[gnu::no_sanitize_address]] std::string_view leading_word(const char *text,
                                                           char (&word)[longest_name]) noexcept
{
    size_t count = 0;
    while (count < longest_name &&
           (count == 0 || !starts_a_page(text + count) || can_be_read(text + count)) &&
           may_stand_in_a_name(text[count])) {
        word[count] = lower(text[count]);
        ++count;
    }
    return {word, count};
}

} // namespace

int64_t name_length(const char *text) noexcept
{
    char letters[longest_name];
    const std::string_view word = leading_word(text, letters);
    size_t longest = 0;
    for (size_t i = 0; i < lapack_manifest.count; ++i) {
        const std::string_view name =
            std::string_view(lapack_manifest.entries[i].entry).substr(entry_prefix.size());
        if (word.starts_with(name))
            longest = std::max(longest, name.size());
    }
    return static_cast<int64_t>(longest > 0 ? longest : std::max<size_t>(word.size(), 1));
}

} // namespace xkl::core
