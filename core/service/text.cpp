// Bounded text: nothing is ever written beyond the buffer, and what fits is kept.
#include "service/service_entries.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

// Returns the number of characters stored, so that a caller can append behind them; -1 when nothing can be
// stored.
int format_bounded(char *buffer, size_t size, size_t max, const char *format, va_list values)
{
    if (!buffer || size == 0 || !format)
        return -1;
    const size_t room = std::min(size - 1, max);
    const int length = std::vsnprintf(buffer, room + 1, format, values);
    if (length < 0) {
        buffer[0] = '\0';
        return -1;
    }
    return static_cast<int>(std::min(static_cast<size_t>(length), room));
}

char upper(char letter)
{
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

} // namespace

extern "C" {

int xkl_serv_snprintf_s(char *buffer, size_t size, size_t max, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = format_bounded(buffer, size, max, format, values);
    va_end(values);
    return length;
}

int xkl_serv_sprintf_s(char *buffer, size_t size, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = format_bounded(buffer, size, size, format, values);
    va_end(values);
    return length;
}

int xkl_serv_sprintf_char_s(char *buffer, size_t size, const char *format, ...)
    __attribute__((alias("xkl_serv_sprintf_s")));

size_t xkl_serv_strnlen_s(const char *text, size_t max)
{
    return text ? strnlen(text, max) : 0;
}

// Appends at most count characters: all of them or, with a nonzero status, none.
int xkl_serv_strncat_s(char *destination, size_t size, const char *source, size_t count)
{
    if (!destination || !source || size == 0)
        return EINVAL;
    const size_t used = strnlen(destination, size);
    if (used == size)
        return EINVAL;
    const size_t added = strnlen(source, count);
    if (added >= size - used)
        return ERANGE;
    std::memmove(destination + used, source, added);
    destination[used + added] = '\0';
    return 0;
}

int xkl_serv_printf_s(const char *format, ...)
{
    if (!format)
        return -1;
    va_list values;
    va_start(values, format);
    const int length = std::vfprintf(stdout, format, values);
    va_end(values);
    return length;
}

// ASCII letters only, whatever the locale. The lengths are part of the convention and not needed.
int64_t xkl_serv_lsame(const char *a, const char *b, int64_t, int64_t)
{
    return upper(*a) == upper(*b);
}
}
