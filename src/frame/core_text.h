// Entries of the core that no forwarder stands for: bounded text, the environment, where the callback
// chains end, and where solvers learn of the progress chain.
#pragma once

#include "xkl_types.h"

extern "C" {
int xkl_serv_snprintf_s(char *buffer, size_t size, size_t most, const char *format, ...);
size_t xkl_serv_strnlen_s(const char *text, size_t most);
int xkl_serv_printf_s(const char *format, ...);
int xkl_serv_getenv(const char *name, char *value, int size);

void xkl_serv_default_xerbla(const char *name, const int64_t *position, int64_t length);
int32_t xkl_serv_default_progress(const int64_t *thread, const int64_t *step, const char *stage,
                                  int64_t length);
void xkl_serv_set_progress_interface(xkl_progress_handler handler);
int32_t xkl_serv_default_pardiso_pivot(const double *pivot, double *replaced, const double *threshold);
}
