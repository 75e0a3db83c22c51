// Entries of the core for the kernel library and its processor classes; the threaders are in core_vml.h.
#pragma once

#include "frame/core_text.h"

extern "C" {
void *xkl_serv_load_vml(void);
int xkl_serv_vml_cpu_detect(void);

int xkl_serv_getenv(const char *name, char *buffer, int size);
int xkl_serv_print(int flag, int number, int count, ...);
int xkl_serv_strncat_s(char *destination, size_t size, const char *source, size_t count);
}
