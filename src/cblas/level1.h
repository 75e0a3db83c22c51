// Vector operations: nothing is tested, and no layout matters.
#pragma once

#include "cblas/call.h"

namespace xkl::cblas {

template <class R, class... A>
auto level1(A... arguments)
{
    return call_frame<R>(arguments...);
}

/// Places count from 0 in C. An empty vector has place 0 too, and the frame is not asked.
template <class R, class X>
int64_t index(int64_t n, const X *x, int64_t incx)
{
    if (n <= 0 || incx <= 0)
        return 0;
    return call_frame<R>(n, x, incx) - 1;
}

/// The complex dot products go to the core directly and leave no trace line.
template <class R, class X>
void dot_sub(int64_t n, const X *x, int64_t incx, const X *y, int64_t incy, void *result)
{
    R::core(passed(result), &n, passed(x), &incx, passed(y), &incy);
}

} // namespace xkl::cblas
