// The core's services that only this family calls.
#pragma once

#include "frame/core_text.h"

extern "C" {
const char *xkl_serv_get_msg(int number, int reserved);
int xkl_serv_sprintf_char_s(char *buffer, size_t size, const char *format, ...);
}
