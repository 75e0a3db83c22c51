// Entries of the core that the frames of random streams call and no forwarder stands for.
#pragma once

#include "frame/core_text.h"

extern "C" {
int xkl_serv_sprintf_s(char *buffer, size_t size, const char *format, ...);
}
