// The service entries that no forwarder of the interface library stands for; those that have one are
// declared from its table, in core_service.h.
//
// Both headers give the entries default visibility: the core is compiled with hidden symbols, and only what
// they (and core_blas.h) declare can pass the version script.
#pragma once

#include "core_service.h"

#pragma GCC visibility push(default)
extern "C" {

// Where the callback chains end.
void xkl_serv_default_xerbla(const char *name, const int64_t *position, int64_t length);
int32_t xkl_serv_default_progress(const int64_t *thread, const int64_t *step, const char *stage,
                                  int64_t length);
int32_t xkl_serv_default_pardiso_pivot(const double *diagonal, double *pivot, const double *threshold);
// What frames store into instead of calling xkl_serv_set_xerbla_interface.
extern xkl_xerbla_registration xkl_serv_xerbla_registration;
void xkl_serv_set_progress_interface(xkl_progress_handler handler);

// Bounded text: never writes beyond `size` bytes, always terminates.
int xkl_serv_snprintf_s(char *buffer, size_t size, size_t max, const char *format, ...);
int xkl_serv_sprintf_s(char *buffer, size_t size, const char *format, ...);
int xkl_serv_sprintf_char_s(char *buffer, size_t size, const char *format, ...);
size_t xkl_serv_strnlen_s(const char *text, size_t max);
int xkl_serv_strncat_s(char *destination, size_t size, const char *source, size_t count);
int xkl_serv_printf_s(const char *format, ...);

// Environment: the value's length, 0 or less when it is unset.
int xkl_serv_getenv(const char *name, char *buffer, int size);

// Kernel library and processor class.
int xkl_serv_vml_cpu_detect(void);
void *xkl_serv_load_vml(void);

// Numbered messages.
int xkl_serv_print(int flag, int number, int count, ...);
const char *xkl_serv_get_msg(int number, int reserved);
}
#pragma GCC visibility pop
