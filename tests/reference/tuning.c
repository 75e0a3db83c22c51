/* Hands the LAPACK test programs' own tuning functions to the library under test. They set block sizes
 * small, so that blocked code runs on their small matrices, and work space minima follow from what they
 * set. */
#include <stdint.h>

typedef int64_t tuning_function(const int64_t *, const char *, const char *, const int64_t *,
                                const int64_t *, const int64_t *, const int64_t *, int64_t, int64_t);

extern tuning_function ilaenv_, ilaenv2stage_; /* the program's, or else the library's */
extern void xkl_core_set_tuning(tuning_function *ilaenv, tuning_function *ilaenv2stage);

__attribute__((constructor)) static void hand_over(void)
{
    xkl_core_set_tuning(ilaenv_, ilaenv2stage_);
}
