// Kernels made for one shape of product. A jitter remembers everything but the three matrices; its kernel
// hands them to OpenBLAS, whose own kernels are already chosen for the processor.
#pragma once

#include "kernels.h"
#include "service/service_entries.h"

#include <new>

namespace xkl::core {

enum jit_status : int64_t { done = 0, refused = 2 };

// Tells a live jitter, and its type, from other memory: a handle comes back from the caller as a bare
// address.
template <class T>
inline constexpr uint64_t live_mark = 0x584b4c4a49540000u + static_cast<unsigned char>(letter_of<T>);
inline constexpr uint64_t letter_of_mark = 0xff;

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
void product_of_jitter(void *handle, const T *a, const T *b, T *c)
{
    const auto &made = *static_cast<const jitter<T> *>(handle);
    gemm(made.transa, made.transb, made.m, made.n, made.k, made.alpha, a, made.lda, b, made.ldb, made.beta,
         c, made.ldc);
}

template <class T>
int64_t xkl_jit_create_gemm(void **handle, const char *transa, const char *transb, const int64_t *m,
                            const int64_t *n, const int64_t *k, const T *alpha, const int64_t *lda,
                            const int64_t *ldb, const T *beta, const int64_t *ldc)
{
    void *place = handle ? xkl_serv_malloc(sizeof(jitter<T>), 64) : nullptr;
    if (!place)
        return refused;
    *handle = new (place)
        jitter<T>{{live_mark<T>}, *transa, *transb, *m, *n, *k, *alpha, *lda, *ldb, *beta, *ldc};
    return done;
}

template <class T>
void *xkl_jit_get_gemm_ptr(void *const *handle)
{
    const auto *given = handle ? static_cast<const any_jitter *>(*handle) : nullptr;
    return given && given->mark == live_mark<T> ? reinterpret_cast<void *>(product_of_jitter<T>) : nullptr;
}

inline int64_t xkl_jit_destroy(void **handle)
{
    auto *given = handle ? static_cast<any_jitter *>(*handle) : nullptr;
    if (!given || (given->mark | letter_of_mark) != (live_mark<float> | letter_of_mark))
        return refused;
    given->mark = 0; // a copy of the handle is no jitter any more
    xkl_serv_free(given);
    *handle = nullptr;
    return done;
}

} // namespace xkl::core
