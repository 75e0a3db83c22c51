// The callback chains. Each spelling calls the next by its exported name, and every one of these calls must
// go through the dynamic symbol: a program that defines one spelling then captures all calls that enter the
// chain above it. The build keeps them interposable (-fsemantic-interposition here, the linker's
// --dynamic-list for the library).
#include "frame/core_text.h"
#include "xkl_service.h"

extern "C" {

void cdecl_xerbla(const char *name, const int64_t *position, int64_t length)
{
    xerbla(name, position, length);
}
void xerbla(const char *name, const int64_t *position, int64_t length)
{
    xerbla_(name, position, length);
}
void xerbla_(const char *name, const int64_t *position, int64_t length)
{
    XERBLA_(name, position, length);
}
void XERBLA_(const char *name, const int64_t *position, int64_t length)
{
    XERBLA(name, position, length);
}
void XERBLA(const char *name, const int64_t *position, int64_t length)
{
    xkl_serv_default_xerbla(name, position, length);
}

int32_t cdecl_progress(const int64_t *thread, const int64_t *step, const char *stage, int64_t length)
{
    return xkl_progress(thread, step, stage, length);
}
int32_t xkl_progress(const int64_t *thread, const int64_t *step, const char *stage, int64_t length)
{
    return xkl_progress_(thread, step, stage, length);
}
int32_t xkl_progress_(const int64_t *thread, const int64_t *step, const char *stage, int64_t length)
{
    return XKL_PROGRESS_(thread, step, stage, length);
}
int32_t XKL_PROGRESS_(const int64_t *thread, const int64_t *step, const char *stage, int64_t length)
{
    return XKL_PROGRESS(thread, step, stage, length);
}
int32_t XKL_PROGRESS(const int64_t *thread, const int64_t *step, const char *stage, int64_t length)
{
    return xkl_serv_default_progress(thread, step, stage, length);
}

int32_t cdecl_pardiso_pivot(const double *pivot, double *replaced, const double *threshold)
{
    return xkl_pardiso_pivot(pivot, replaced, threshold);
}
int32_t xkl_pardiso_pivot(const double *pivot, double *replaced, const double *threshold)
{
    return xkl_pardiso_pivot_(pivot, replaced, threshold);
}
int32_t xkl_pardiso_pivot_(const double *pivot, double *replaced, const double *threshold)
{
    return XKL_PARDISO_PIVOT_(pivot, replaced, threshold);
}
int32_t XKL_PARDISO_PIVOT_(const double *pivot, double *replaced, const double *threshold)
{
    return XKL_PARDISO_PIVOT(pivot, replaced, threshold);
}
int32_t XKL_PARDISO_PIVOT(const double *pivot, double *replaced, const double *threshold)
{
    return xkl_serv_default_pardiso_pivot(pivot, replaced, threshold);
}
}
