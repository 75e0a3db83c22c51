// What the kernel library finds in the environment. It reads it in its own load-time constructor, before
// any call could reach it. The link directs every getenv of the core's static libraries here
// (--wrap=getenv), so that the choice does not depend on the order of constructors, and the process's
// environment is never touched: another thread may be reading it while the library is opened.
#include "openblas/kernel_set.h"

#include <string_view>

extern "C" {

char *__real_getenv(const char *name);

char *__wrap_getenv(const char *name)
{
    const std::string_view variable = name;
    if (variable == "OPENBLAS_CORETYPE")
        return const_cast<char *>(xkl::core::wanted_kernel_set());
    // No threads are started while the library is loaded. The first kernel sets the real count.
    if (variable == "OPENBLAS_NUM_THREADS") {
        static char one[] = "1";
        return one;
    }
    return __real_getenv(name);
}
}
