// What MUMPS needs of its Fortran compiler's run-time library, beside core/openblas/fortran_runtime.cpp.
// All its messages are switched off and it keeps no files, so that reading and writing do nothing here.
// Where the run-time library ends the process, these functions throw: MUMPS' objects carry the tables for
// that, and the engine gives up the instance (its memory included, for who owns what is unknown then).
#include "solvers/mumps/stopped.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

int compare(size_t length, const char *text, size_t other_length, const char *other)
{
    const size_t common = std::min(length, other_length);
    if (const int order = std::memcmp(text, other, common))
        return order;
    const auto rest = [](const char *from, const char *to) {
        for (; from < to; ++from)
            if (*from != ' ')
                return static_cast<unsigned char>(*from) < ' ' ? -1 : 1;
        return 0;
    };
    return rest(text + common, text + length) - rest(other + common, other + other_length);
}

size_t trimmed(size_t length, const char *text)
{
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return length;
}

// The compiler's description of an array.
struct array {
    char *base;
    size_t offset;
    struct {
        size_t element_length;
        int version;
        signed char rank, type;
        short attribute;
    } type;
    ptrdiff_t span;
    struct {
        ptrdiff_t stride, lower, upper;
    } dimension[15];

    ptrdiff_t extent(int d) const
    {
        return std::max<ptrdiff_t>(dimension[d].upper - dimension[d].lower + 1, 0);
    }
    ptrdiff_t size() const
    {
        ptrdiff_t count = 1;
        for (int d = 0; d < type.rank; ++d)
            count *= extent(d);
        return count;
    }
    bool contiguous() const
    {
        ptrdiff_t step = 1;
        for (int d = 0; d < type.rank; ++d) {
            if (dimension[d].stride != step)
                return false;
            step *= extent(d);
        }
        return true;
    }
    char *element(ptrdiff_t number) const
    {
        ptrdiff_t place = 0;
        for (int d = 0; d < type.rank; ++d) {
            place += number % extent(d) * dimension[d].stride;
            number /= extent(d);
        }
        return base + place * static_cast<ptrdiff_t>(type.element_length);
    }
};

// Written by xkl_mumps_srand and xkl_mumps_rand, under the lock on MUMPS.
uint64_t random_state = 1;

struct string_case {
    const char *low;
    size_t low_length;
    const char *high;
    size_t high_length;
    int number;
};

} // namespace

extern "C" {

int _gfortran_compare_string(size_t length, const char *text, size_t other_length, const char *other)
{
    return compare(length, text, other_length, other);
}

size_t _gfortran_string_len_trim(size_t length, const char *text)
{
    return trimmed(length, text);
}

void _gfortran_string_trim(size_t *result_length, void **result, size_t length, const char *text)
{
    *result_length = trimmed(length, text);
    *result = nullptr;
    if (*result_length == 0)
        return;
    *result = std::malloc(*result_length);
    if (!*result)
        throw std::bad_alloc();
    std::memcpy(*result, text, *result_length);
}

void _gfortran_adjustl(char *result, size_t length, const char *text)
{
    size_t blanks = 0;
    while (blanks < length && text[blanks] == ' ')
        ++blanks;
    std::memmove(result, text + blanks, length - blanks);
    std::memset(result + length - blanks, ' ', blanks);
}

int _gfortran_select_string(const string_case *cases, int count, const char *text, size_t length)
{
    int otherwise = -1;
    for (const string_case *c = cases; c < cases + count; ++c) {
        if (!c->low && !c->high)
            otherwise = c->number;
        else if ((!c->low || compare(length, text, c->low_length, c->low) >= 0) &&
                 (!c->high || compare(length, text, c->high_length, c->high) <= 0))
            return c->number;
    }
    return otherwise;
}

void *_gfortran_internal_pack(array *source)
{
    if (source->contiguous())
        return source->base;
    const size_t width = source->type.element_length;
    const ptrdiff_t count = source->size();
    char *packed = static_cast<char *>(std::malloc(std::max<size_t>(width * count, 1)));
    if (!packed)
        throw std::bad_alloc();
    for (ptrdiff_t i = 0; i < count; ++i)
        std::memcpy(packed + i * width, source->element(i), width);
    return packed;
}

void _gfortran_internal_unpack(array *target, const void *packed)
{
    if (packed == target->base || !packed)
        return;
    const size_t width = target->type.element_length;
    for (ptrdiff_t i = 0, count = target->size(); i < count; ++i)
        std::memcpy(target->element(i), static_cast<const char *>(packed) + i * width, width);
}

// For a vector to begin an estimate with, and for the choice among equal processes.
void _gfortran_random_r8(double *result)
{
    *result = 0.5;
}

void _gfortran_date_and_time(char *, char *, char *, array *, size_t, size_t, size_t) {}

[[noreturn]] void _gfortran_os_error_at(const char *, const char *, ...)
{
    throw std::bad_alloc();
}

[[noreturn]] void _gfortran_runtime_error_at(const char *, const char *, ...)
{
    throw xkl::core::mumps_stopped();
}

[[noreturn]] void _gfortran_stop_string(const char *, size_t, bool)
{
    throw xkl::core::mumps_stopped();
}

[[noreturn]] void xkl_mumps_exit(int)
{
    throw xkl::core::mumps_stopped();
}

// The program's own sequence stays as it is.
void xkl_mumps_srand()
{
    random_state = 1;
}
int xkl_mumps_rand()
{
    random_state = random_state * 6364136223846793005 + 1442695040888963407;
    return static_cast<int>(random_state >> 33);
}

// An ordering that is never asked for.
int esmumps(int64_t, int64_t, int64_t *, int64_t, int64_t *, int64_t *, int64_t *, int64_t *, int64_t *)
{
    return -1;
}
int esmumpsv(int64_t, int64_t, int64_t *, int64_t, int64_t *, int64_t *, int64_t *, int64_t *, int64_t *,
             int64_t *)
{
    return -1;
}

void _gfortran_st_close(void *) {}
void _gfortran_st_inquire(void *) {}
void _gfortran_st_open(void *) {}
void _gfortran_st_read(void *) {}
void _gfortran_st_read_done(void *) {}
void _gfortran_st_write(void *) {}
void _gfortran_st_write_done(void *) {}
void _gfortran_transfer_array(void *, array *, int, size_t) {}
void _gfortran_transfer_array_write(void *, array *, int, size_t) {}
void _gfortran_transfer_character(void *, void *, size_t) {}
void _gfortran_transfer_character_write(void *, void *, size_t) {}
void _gfortran_transfer_complex(void *, void *, int) {}
void _gfortran_transfer_complex_write(void *, void *, int) {}
void _gfortran_transfer_integer(void *, void *, int) {}
void _gfortran_transfer_integer_write(void *, void *, int) {}
void _gfortran_transfer_logical(void *, void *, int) {}
void _gfortran_transfer_logical_write(void *, void *, int) {}
void _gfortran_transfer_real(void *, void *, int) {}
void _gfortran_transfer_real_write(void *, void *, int) {}
}
