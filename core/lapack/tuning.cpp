// The tuning parameters: the functions that tell them, and another program's in their place.
//
// LAPACK lets a program bring an ILAENV of its own, with block sizes that suit it. The one in here is
// hidden and cannot be replaced by linking, so it is replaced by a call. The link directs all calls of the
// static libraries here (--wrap=ilaenv_ and --wrap=ilaenv2stage_).
#include "core_lapack.h"
#include "lapack/name_length.h"
#include "openblas/forward.h"

#include <atomic>

using xkl::core::name_length;
using xkl::core::on_openblas;

extern "C" {
using tuning_function = int64_t(const int64_t *, const char *, const char *, const int64_t *,
                                const int64_t *, const int64_t *, const int64_t *, int64_t, int64_t);
tuning_function __real_ilaenv_, __real_ilaenv2stage_, __wrap_ilaenv_, __wrap_ilaenv2stage_, iparmq_,
    iparam2stage_;
}

namespace {

// Written by whoever replaces them, before LAPACK runs; a call under way takes the one or the other.
constinit std::atomic<tuning_function *> one_stage{__real_ilaenv_}, two_stage{__real_ilaenv2stage_};

// Of the options LAPACK reads the first letter at most.
int64_t tuned(tuning_function *function, const int64_t *ispec, const char *name, const char *opts,
              const int64_t *n1, const int64_t *n2, const int64_t *n3, const int64_t *n4)
{
    return on_openblas(function, ispec, name, opts, n1, n2, n3, n4, name_length(name), 1);
}

} // namespace

// What LAPACK itself asks.
int64_t __wrap_ilaenv_(const int64_t *ispec, const char *name, const char *opts, const int64_t *n1,
                       const int64_t *n2, const int64_t *n3, const int64_t *n4, int64_t name_length,
                       int64_t opts_length)
{
    return one_stage.load(std::memory_order_relaxed)(ispec, name, opts, n1, n2, n3, n4, name_length,
                                                     opts_length);
}

int64_t __wrap_ilaenv2stage_(const int64_t *ispec, const char *name, const char *opts, const int64_t *n1,
                             const int64_t *n2, const int64_t *n3, const int64_t *n4, int64_t name_length,
                             int64_t opts_length)
{
    return two_stage.load(std::memory_order_relaxed)(ispec, name, opts, n1, n2, n3, n4, name_length,
                                                     opts_length);
}

/// Puts a program's own functions in the place of ILAENV and ILAENV2STAGE; null puts LAPACK's back.
extern "C" [[gnu::visibility("default")]] void xkl_core_set_tuning(tuning_function *ilaenv,
                                                                   tuning_function *ilaenv2stage)
{
    one_stage = ilaenv ? ilaenv : __real_ilaenv_;
    two_stage = ilaenv2stage ? ilaenv2stage : __real_ilaenv2stage_;
}

// What programs ask: always LAPACK's own.
int64_t xkl_lapack_ilaenv(const int64_t *ispec, const char *name, const char *opts, const int64_t *n1,
                          const int64_t *n2, const int64_t *n3, const int64_t *n4, int64_t, int64_t)
{
    return tuned(__real_ilaenv_, ispec, name, opts, n1, n2, n3, n4);
}

int64_t xkl_lapack_ilaenv2stage(const int64_t *ispec, const char *name, const char *opts, const int64_t *n1,
                                const int64_t *n2, const int64_t *n3, const int64_t *n4, int64_t, int64_t)
{
    return tuned(__real_ilaenv2stage_, ispec, name, opts, n1, n2, n3, n4);
}

int64_t xkl_lapack_iparmq(const int64_t *ispec, const char *name, const char *opts, const int64_t *n,
                          const int64_t *ilo, const int64_t *ihi, const int64_t *lwork, int64_t, int64_t)
{
    return tuned(iparmq_, ispec, name, opts, n, ilo, ihi, lwork);
}

int64_t xkl_lapack_iparam2stage(const int64_t *ispec, const char *name, const char *opts, const int64_t *ni,
                                const int64_t *nbi, const int64_t *ibi, const int64_t *nxi, int64_t,
                                int64_t)
{
    return tuned(iparam2stage_, ispec, name, opts, ni, nbi, ibi, nxi);
}
