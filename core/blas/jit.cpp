// Kernels made for one shape of product. A jitter remembers everything but the three matrices; its kernel
// hands them to OpenBLAS, whose own kernels are already chosen for the processor.
#include "entries.h"
#include "kernels.h"
#include "service/service_entries.h"

#include <new>

namespace xkl::core {
namespace {

enum status : int64_t { done = 0, refused = 2 };

// Tells a live jitter, and its type, from other memory: a handle comes back from the caller as a bare
// address.
template <class T>
constexpr uint64_t live_mark = 0x584b4c4a49540000u + static_cast<unsigned char>(letter_of<T>);
constexpr uint64_t letter_of_mark = 0xff;

struct any_jitter {
    uint64_t mark;
};

template <class T>
struct jitter : any_jitter {
    char transa, transb;
    int64_t m, n, k;
    T alpha;
    int64_t lda, ldb;
    T beta;
    int64_t ldc;
};

template <class T>
void kernel(void *handle, const T *a, const T *b, T *c)
{
    const auto &made = *static_cast<const jitter<T> *>(handle);
    gemm(made.transa, made.transb, made.m, made.n, made.k, made.alpha, a, made.lda, b, made.ldb, made.beta,
         c, made.ldc);
}

template <class T>
int64_t create(void **handle, const jitter<T> &wanted)
{
    void *place = handle ? xkl_serv_malloc(sizeof wanted, 64) : nullptr;
    if (!place)
        return refused;
    *handle = new (place) jitter<T>(wanted);
    return done;
}

template <class T>
void *kernel_of(void *const *handle)
{
    const auto *given = handle ? static_cast<const any_jitter *>(*handle) : nullptr;
    return given && given->mark == live_mark<T> ? reinterpret_cast<void *>(kernel<T>) : nullptr;
}

int64_t destroy(void **handle)
{
    auto *given = handle ? static_cast<any_jitter *>(*handle) : nullptr;
    if (!given || (given->mark | letter_of_mark) != (live_mark<float> | letter_of_mark))
        return refused;
    given->mark = 0; // a copy of the handle is no jitter any more
    xkl_serv_free(given);
    *handle = nullptr;
    return done;
}

} // namespace
} // namespace xkl::core

using namespace xkl::core;

#define ENTRIES(T, t)                                                                                      \
    extern "C" int64_t xkl_blas_xkl_jit_create_##t##gemm(                                                  \
        void **handle, const char *transa, const char *transb, const int64_t *m, const int64_t *n,         \
        const int64_t *k, const T *alpha, const int64_t *lda, const int64_t *ldb, const T *beta,           \
        const int64_t *ldc, int64_t, int64_t)                                                              \
    {                                                                                                      \
        return create<T>(handle,                                                                           \
                         {{live_mark<T>}, *transa, *transb, *m, *n, *k, *alpha, *lda, *ldb, *beta, *ldc}); \
    }                                                                                                      \
    extern "C" void *xkl_blas_xkl_jit_get_##t##gemm_ptr(void *const *handle)                               \
    {                                                                                                      \
        return kernel_of<T>(handle);                                                                       \
    }
XKL_FOR_ALL_TYPES(ENTRIES)

extern "C" int64_t xkl_blas_xkl_jit_destroy(void **handle)
{
    return destroy(handle);
}
