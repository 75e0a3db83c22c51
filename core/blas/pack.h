// Packed operands: op(A) or op(B), scaled, as the matrix that a product without transposition reads, with a
// header that says which operand it is. Columns start on cache lines and never a page apart, where they
// would share the cache's sets. Places are kept as offsets, so that a packed operand may be moved and
// stored.
#pragma once

#include "kernels.h"
#include "parts.h"
#include "report.h"

#include <cstring>

namespace xkl::core {

inline constexpr int64_t line = 64, page = 4096;

struct packed_header {
    char mark[7]; // "XKLPACK"
    char identifier;
    int64_t element_size;
    int64_t rows, columns;
    int64_t ld;
    int64_t offset; // of the elements, in bytes from the header
};
inline constexpr int64_t space_for_header =
    sizeof(packed_header) + line; // the elements start on a line wherever it stands
inline constexpr char mark[] = "XKLPACK";

inline packed_header describe(char identifier, int64_t m, int64_t n, int64_t k, int64_t element_size)
{
    const bool a = is(identifier, 'A');
    packed_header header = {{}, a ? 'A' : 'B', element_size, a ? m : k, a ? k : n, 0, 0};
    std::memcpy(header.mark, mark, sizeof header.mark);
    const int64_t per_line = line / element_size;
    header.ld = (std::max<int64_t>(header.rows, 1) + per_line - 1) / per_line * per_line;
    if (header.ld * element_size % page == 0)
        header.ld += per_line;
    return header;
}

/// INT64_MAX, which no allocator grants, for sizes beyond the address space
template <class T>
int64_t gemm_pack_get_size(const char *identifier, const int64_t *m, const int64_t *n, const int64_t *k)
{
    constexpr int64_t longest = INT64_MAX / page;
    if (std::max({*m, *n, *k}) > longest)
        return INT64_MAX;
    const packed_header header = describe(*identifier, *m, *n, *k, sizeof(T));
    int64_t bytes;
    if (__builtin_mul_overflow(header.ld, header.columns, &bytes) ||
        __builtin_mul_overflow(bytes, static_cast<int64_t>(sizeof(T)), &bytes) ||
        __builtin_add_overflow(bytes, space_for_header, &bytes))
        return INT64_MAX;
    return bytes;
}

/// to := alpha*src transposed, in squares that the first-level cache holds
template <class T>
void copy_transposed(int64_t rows, int64_t columns, T alpha, const T *src, int64_t ld, T *to, int64_t ldt)
{
    constexpr int64_t square = 32;
    for (int64_t j = 0; j < columns; j += square)
        for (int64_t i = 0; i < rows; i += square)
            for (int64_t v = j; v < std::min(columns, j + square); ++v)
                for (int64_t u = i; u < std::min(rows, i + square); ++u)
                    to[u + v * ldt] = alpha * src[v + u * ld];
}

template <class T>
void gemm_pack(const char *identifier, const char *trans, const int64_t *m, const int64_t *n,
               const int64_t *k, const T *alpha, const T *src, const int64_t *ld, T *dest)
{
    packed_header header = describe(*identifier, *m, *n, *k, sizeof(T));
    char *start = reinterpret_cast<char *>(dest);
    const auto unaligned = reinterpret_cast<uintptr_t>(start + sizeof header);
    header.offset = static_cast<int64_t>(sizeof header + (line - unaligned % line) % line);
    std::memcpy(start, &header, sizeof header);
    T *to = reinterpret_cast<T *>(start + header.offset);
    const T factor = *alpha;
    const int64_t distance = *ld;
    if (factor == T(0))
        return scale(header.rows, header.columns, T(0), to, header.ld);
    if (!is(*trans, 'N'))
        return copy_transposed(header.rows, header.columns, factor, src, distance, to, header.ld);
    for (int64_t j = 0; j < header.columns; ++j)
        std::transform(src + j * distance, src + j * distance + header.rows, to + j * header.ld,
                       [factor](T each) { return factor * each; });
}

/// An operand of a product, packed or plain, as the plain product takes it
template <class T>
struct operand {
    char trans;
    const T *elements;
    int64_t ld;
};

/// False when what is given as packed isn't this operand of such a product.
template <class T>
bool unpack(operand<T> &given, char identifier, int64_t m, int64_t n, int64_t k)
{
    if (!is(given.trans, 'P'))
        return true;
    packed_header header;
    std::memcpy(&header, given.elements, sizeof header);
    const packed_header expected = describe(identifier, m, n, k, sizeof(T));
    if (std::memcmp(&header, &expected, offsetof(packed_header, offset)) != 0)
        return false;
    const char *start = reinterpret_cast<const char *>(given.elements);
    given = {'N', reinterpret_cast<const T *>(start + header.offset), header.ld};
    return true;
}

template <class T>
void gemm_compute(const char *transa, const char *transb, const int64_t *m, const int64_t *n,
                  const int64_t *k, const T *a, const int64_t *lda, const T *b, const int64_t *ldb,
                  const T *beta, T *c, const int64_t *ldc)
{
    operand<T> left = {*transa, a, *lda}, right = {*transb, b, *ldb};
    if (*m <= 0 || *n <= 0)
        return;
    if (!unpack(left, 'A', *m, *n, *k))
        return report("?GEMM_COMPUTE ", letter_of<T>, 6);
    if (!unpack(right, 'B', *m, *n, *k))
        return report("?GEMM_COMPUTE ", letter_of<T>, 8);
    gemm(left.trans, right.trans, *m, *n, *k, T(1), left.elements, left.ld, right.elements, right.ld, *beta,
         c, *ldc);
}

} // namespace xkl::core
