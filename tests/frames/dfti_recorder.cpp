#include "dfti_recorder.h"

#include <cstdarg>
#include <cstdio>

const xkl_mpi_wrappers *recorded_wrappers = nullptr;

extern "C" {

const char *xkl_serv_get_msg(int number, int reserved)
{
    record("xkl_serv_get_msg", {number, reserved});
    return "a message";
}

// As a core may do it: the length of all the text comes back, even of what did not fit.
int xkl_serv_sprintf_char_s(char *buffer, size_t size, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(buffer, size, format, values);
    va_end(values);
    return length;
}

const xkl_mpi_wrappers *xkl_serv_get_mpi_wrappers(void)
{
    return recorded_wrappers;
}
}
