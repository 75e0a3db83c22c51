// The kernel library as this library sees it: the core chooses and opens it, here it is asked for symbols
// by name. Nothing is opened before the first call that computes or asks for a mode or status, and
// nothing is ever given back.
#pragma once

#include "xkl_types.h"

extern "C" {

/// Has the core open the kernel library, unless that has happened.
void xkl_vml_serv_load_vml_dll(void);

/// The address of a symbol of the kernel library. Never null: where the library or the symbol is missing, a
/// message says so and the process ends with code 2.
void *xkl_vml_serv_load_vml_func(const char *name);

/// The core's handle of the kernel library; null before it was opened.
void *xkl_vml_serv_get_dll_handle(void);

/// The class of the running processor, which chooses among the kernels of a table.
int32_t xkl_vml_serv_cpu_detect(void);

/// The same as the core's own code, which the classes are made from.
int32_t xkl_vml_serv_cpu_detect_legacy(void);

/// Runs when the library is loaded.
void _Init_XKL_Loader(void);
}
