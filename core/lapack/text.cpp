// The routines that take or return text, but for the tuning functions. All other characters of LAPACK are
// options of one letter, whose length the frames know.
#include "core_lapack.h"
#include "openblas/forward.h"

using xkl::core::on_openblas;

extern "C" void chla_transtype_(char *result, int64_t length, const int64_t *trans);

namespace {

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

// Written here because the lengths decide in LAPACK's own: it finds strings different that are shorter than
// n letters, and all that come here have the length 1. A zero ends a text before its n letters.
int64_t xkl_lapack_lsamen(const int64_t *n, const char *ca, const char *cb, int64_t, int64_t)
{
    for (int64_t i = 0; i < *n; ++i)
        if (ca[i] == '\0' || lower(ca[i]) != lower(cb[i]))
            return 0;
    return 1;
}

// Fortran compilers return a character through an address and a length ahead of the arguments.
char xkl_lapack_chla_transtype(const int64_t *trans)
{
    char result;
    on_openblas(chla_transtype_, &result, 1, trans);
    return result;
}
