// The kernel library's threads across fork. Its own way, ending them before each fork, waits for ever when
// another thread is computing at that moment. Here the parent keeps its threads, and the child, which has
// none of them, forgets them: they are started again when a kernel needs them.
#include <pthread.h>

extern "C" {

// The kernel library's word on whether its threads run, read before each use of them.
extern int blas_server_avail;

// Takes the place of the function that ends the threads (--wrap=blas_thread_shutdown_), which the kernel
// library registers to be called before a fork.
int __wrap_blas_thread_shutdown_(void)
{
    return 0;
}
}

namespace {

[[gnu::constructor]] void prepare_children()
{
    pthread_atfork(nullptr, nullptr, [] { blas_server_avail = 0; });
}

} // namespace
