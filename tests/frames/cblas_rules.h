// What the C interface has to do, shape by shape, as data: in which order arguments are tested, what the
// frame gets for a row-major call, and how small leading dimensions and strides may be. It is written from
// the mathematics of the transposed problem, not from the library.
#pragma once

#include <cstring>
#include <stdexcept>
#include <string>

struct cblas_rule {
    const char *shape;
    const char *tests; // arguments in the order in which they are tested

    // What the frame gets for a row-major call, by the names of the C list. Before a name: ~ the other side
    // or triangle, ^ transposed once more, ! conjugated (x:n, n elements in logical order), - the caller's
    // vector, conjugated in place during the call, # the value of. A number stands for itself. For shapes
    // without layout: the frame's order, if it is another than the C list's.
    const char *by_rows;
    const char *conjugated; // the same where conj(A) is left over

    // Least values. ld:m,n of an m by n matrix; ld:trans,m,n where op() is that; ld:side of a square beside
    // it; ld:k+1; stride:ldc*m,n of a result; stride:incy^n of a result of n elements, incy^trans,m,n of
    // one of m or n.
    const char *extents;
};

inline constexpr cblas_rule cblas_rules[] = {
    {"level1", "", nullptr, nullptr, ""},
    {"index", "", nullptr, nullptr, ""},
    {"dot_sub", "", "result n x incx y incy", nullptr, ""},
    {"axpy_batch_strided", "stridex stridey batch_size", nullptr, nullptr, "stridey:incy^n"},
    {"copy_batch_strided", "stridex stridey batch_size", nullptr, nullptr, "stridey:incy^n"},
    {"axpy_batch", "group_count n incx incy", nullptr, nullptr, ""},
    {"copy_batch", "group_count n incx incy", nullptr, nullptr, ""},

    {"gemv", "layout m n lda incx incy", "^trans n m alpha a lda x incx beta y incy",
     "^trans n m !alpha a lda !x:m 1 !beta -y:n incy", "lda:m,n"},
    {"gbmv", "layout trans m n kl ku lda incx incy", "^trans n m ku kl alpha a lda x incx beta y incy",
     "^trans n m ku kl !alpha a lda !x:m 1 !beta -y:n incy", "lda:kl+ku+1"},
    {"ger", "layout m n lda incx incy", "n m alpha y incy x incx a lda", nullptr, "lda:m,n"},
    {"gerc", "layout m n lda incx incy", nullptr, "n m alpha !y:n 1 x incx a lda", "lda:m,n"},
    {"symv", "layout uplo n lda incx incy", "~uplo n alpha a lda x incx beta y incy",
     "~uplo n !alpha a lda !x:n 1 !beta -y:n incy", "lda:n"},
    {"sbmv", "layout uplo n k lda incx incy", "~uplo n k alpha a lda x incx beta y incy",
     "~uplo n k !alpha a lda !x:n 1 !beta -y:n incy", "lda:k+1"},
    {"spmv", "layout uplo n incx incy", "~uplo n alpha ap x incx beta y incy",
     "~uplo n !alpha ap !x:n 1 !beta -y:n incy", ""},
    {"syr", "layout uplo n lda incx", "~uplo n alpha x incx a lda", "~uplo n alpha !x:n 1 a lda", "lda:n"},
    {"spr", "layout uplo n incx", "~uplo n alpha x incx ap", "~uplo n alpha !x:n 1 ap", ""},
    {"syr2", "layout uplo n lda incx incy", "~uplo n alpha x incx y incy a lda",
     "~uplo n alpha !y:n 1 !x:n 1 a lda", "lda:n"},
    {"spr2", "layout uplo n incx incy", "~uplo n alpha x incx y incy ap", "~uplo n alpha !y:n 1 !x:n 1 ap",
     ""},
    {"trmv", "layout uplo trans diag n lda incx", "~uplo ^trans diag n a lda x incx",
     "~uplo ^trans diag n a lda -x:n incx", "lda:n"},
    {"tbmv", "layout uplo trans diag n k lda incx", "~uplo ^trans diag n k a lda x incx",
     "~uplo ^trans diag n k a lda -x:n incx", "lda:k+1"},
    {"tpmv", "layout uplo trans diag n incx", "~uplo ^trans diag n ap x incx",
     "~uplo ^trans diag n ap -x:n incx", ""},
    {"gem2v", "layout m n lda incx1 incx2 incy1 incy2",
     "n m alpha a lda x2 incx2 x1 incx1 beta y2 incy2 y1 incy1",
     "n m !alpha a lda !x2:m 1 !x1:n 1 !beta -y2:n incy2 -y1:m incy1", "lda:m,n"},

    {"gemm", "transa transb m n k layout lda ldb ldc", "transb transa n m k alpha b ldb a lda beta c ldc",
     nullptr, "lda:transa,m,k ldb:transb,k,n ldc:m,n"},
    {"mixed_gemm", "transa transb m n k layout lda ldb ldc", nullptr, nullptr,
     "lda:transa,m,k ldb:transb,k,n ldc:m,n"},
    {"gemmt", "uplo transa transb n k layout lda ldb ldc",
     "~uplo transb transa n k alpha b ldb a lda beta c ldc", nullptr,
     "lda:transa,n,k ldb:transb,k,n ldc:n"},
    {"symm", "side uplo m n layout lda ldb ldc", "~side ~uplo n m alpha a lda b ldb beta c ldc", nullptr,
     "lda:side ldb:m,n ldc:m,n"},
    {"syrk", "uplo trans n k layout lda ldc", "~uplo ^trans n k alpha a lda beta c ldc", nullptr,
     "lda:trans,n,k ldc:n"},
    {"herk", "uplo trans n k layout lda ldc", "~uplo ^trans n k alpha a lda beta c ldc", nullptr,
     "lda:trans,n,k ldc:n"},
    {"syr2k", "uplo trans n k layout lda ldb ldc", "~uplo ^trans n k alpha a lda b ldb beta c ldc", nullptr,
     "lda:trans,n,k ldb:trans,n,k ldc:n"},
    {"her2k", "uplo trans n k layout lda ldb ldc", "~uplo ^trans n k !alpha a lda b ldb beta c ldc",
     nullptr, "lda:trans,n,k ldb:trans,n,k ldc:n"},
    {"trmm", "side uplo transa diag m n layout lda ldb", "~side ~uplo transa diag n m alpha a lda b ldb",
     nullptr, "lda:side ldb:m,n"},
    {"trmm_oop", "side uplo transa diag m n layout lda ldb ldc",
     "~side ~uplo transa diag n m alpha a lda b ldb beta c ldc", nullptr, "lda:side ldb:m,n ldc:m,n"},
    {"ptrmm", "side uplo transa diag m n layout ldb", "~side ~uplo transa diag n m alpha ap b ldb", nullptr,
     "ldb:m,n"},

    {"gemm_batch_strided", "transa transb m n k layout lda stridea ldb strideb ldc stridec batch_size",
     "transb transa n m k alpha b ldb strideb a lda stridea beta c ldc stridec batch_size", nullptr,
     "lda:transa,m,k ldb:transb,k,n ldc:m,n stridec:ldc*m,n"},
    {"gemv_batch_strided", "layout trans m n lda stridea incx stridex incy stridey batch_size",
     "^trans n m alpha a lda stridea x incx stridex beta y incy stridey batch_size",
     "^trans n m !alpha a lda stridea !x:m 1 #m !beta -y:n incy stridey batch_size",
     "lda:m,n stridey:incy^trans,m,n"},
    {"trsm_batch_strided", "side uplo transa diag m n layout lda stridea ldb strideb batch_size",
     "~side ~uplo transa diag n m alpha a lda stridea b ldb strideb batch_size", nullptr,
     "lda:side ldb:m,n strideb:ldb*m,n"},
    {"syrk_batch_strided", "uplo trans n k layout lda stridea ldc stridec batch_size",
     "~uplo ^trans n k alpha a lda stridea beta c ldc stridec batch_size", nullptr,
     "lda:trans,n,k ldc:n stridec:ldc*n,n"},
    {"dgmm_batch_strided", "side m n layout lda stridea incx stridex ldc stridec batch_size",
     "~side n m a lda stridea x incx stridex c ldc stridec batch_size", nullptr,
     "lda:m,n ldc:m,n stridec:ldc*m,n"},

    {"gemm_batch", "layout group_count transa transb m n k lda ldb ldc",
     "transb transa n m k alpha b ldb a lda beta c ldc group_count group_size", nullptr,
     "lda:transa,m,k ldb:transb,k,n ldc:m,n"},
    {"gemv_batch", "layout group_count trans m n lda incx incy",
     "^trans n m alpha a lda x incx beta y incy group_count group_size", nullptr, "lda:m,n"},
    {"trsm_batch", "layout group_count side uplo transa diag m n lda ldb",
     "~side ~uplo transa diag n m alpha a lda b ldb group_count group_size", nullptr, "lda:side ldb:m,n"},
    {"syrk_batch", "layout group_count uplo trans n k lda ldc",
     "~uplo ^trans n k alpha a lda beta c ldc group_count group_size", nullptr, "lda:trans,n,k ldc:n"},
    {"dgmm_batch", "layout group_count side m n lda incx ldc",
     "~side n m a lda x incx c ldc group_count group_size", nullptr, "lda:m,n ldc:m,n"},
};

inline const cblas_rule &rule_of(const char *shape)
{
    for (const cblas_rule &rule : cblas_rules)
        if (std::strcmp(rule.shape, shape) == 0)
            return rule;
    throw std::invalid_argument(std::string("cblas_rules.h has no shape ") + shape);
}
