// The matrix checker, and the helper for Fortran texts.
#pragma once

#include "xkl_solver_types.h"

namespace xkl::core {

int32_t sparse_matrix_checker(sparse_struct *matrix);
void sparse_matrix_checker_init(sparse_struct *matrix);
void xkl_cvt_to_null_terminated_str(int8_t *destination, const int64_t *length, const char *source,
                                    int64_t source_length);

} // namespace xkl::core
