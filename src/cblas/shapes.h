// The shapes of the C interface. A row of cblas.tbl names one of these templates, and the generator prints
// a body that calls it with the row's name for reports, its type of element, its frame and its core entry.
//
//   level1                     arguments by value become arguments by address            level1.h
//   index                      as level1, counted from 0
//   dot_sub                    a complex result at an address, without a frame
//   gemv gbmv symv sbmv spmv   matrix times vector; symv, sbmv, spmv: Hermitian too      matrix_vector.h
//   gem2v                      two of them
//   ger gerc                   rank-one updates of a general matrix                      rank_update.h
//   syr spr syr2 spr2          of a symmetric or Hermitian one
//   trmv tbmv tpmv             triangular matrices and systems                           triangular_vector.h
//   gemm mixed_gemm gemmt symm matrix times matrix                                       matrix_product.h
//   syrk herk syr2k her2k      rank-k updates                                            symmetric_update.h
//   trmm trmm_oop ptrmm        triangular matrices and systems, many vectors             triangular_matrix.h
//   ..._batch_strided          one matrix and a stride                                   strided_batch.h
//   ..._batch                  groups of matrices                             group_batch.h, group_gemv.h
#pragma once

#include "cblas/group_batch.h"
#include "cblas/group_gemv.h"
#include "cblas/level1.h"
#include "cblas/matrix_product.h"
#include "cblas/matrix_vector.h"
#include "cblas/rank_update.h"
#include "cblas/strided_batch.h"
#include "cblas/symmetric_update.h"
#include "cblas/triangular_matrix.h"
#include "cblas/triangular_vector.h"
