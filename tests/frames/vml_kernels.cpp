// The recording kernel library: every operation is recorded. Its tables are generated; their kernels are
// marks, but for those that are called directly.
#include "vml_recorder.h"

#include <utility>

extern "C" {

int32_t xkl_vml_kernel_GetTTableIndex(int32_t processor_class)
{
    record("GetTTableIndex", {processor_class});
    return vml_recorded.table_index;
}

uint32_t xkl_vml_kernel_SetMode(uint32_t mode)
{
    record("SetMode", {mode});
    return std::exchange(vml_recorded.mode, mode);
}
uint32_t xkl_vml_kernel_GetMode(void)
{
    record("GetMode", {});
    return vml_recorded.mode;
}

int32_t xkl_vml_kernel_SetErrStatus(int32_t status)
{
    record("SetErrStatus", {status});
    return std::exchange(vml_recorded.status, status);
}
int32_t xkl_vml_kernel_GetErrStatus(void)
{
    record("GetErrStatus", {});
    return vml_recorded.status;
}
int32_t xkl_vml_kernel_ClearErrStatus(void)
{
    record("ClearErrStatus", {});
    return std::exchange(vml_recorded.status, 0);
}

void *xkl_vml_kernel_SetErrorCallBack(void *callback)
{
    record("SetErrorCallBack", {word(callback)});
    return std::exchange(vml_recorded.callback, callback);
}
void *xkl_vml_kernel_GetErrorCallBack(void)
{
    record("GetErrorCallBack", {});
    return vml_recorded.callback;
}
void *xkl_vml_kernel_ClearErrorCallBack(void)
{
    record("ClearErrorCallBack", {});
    return std::exchange(vml_recorded.callback, nullptr);
}
}
