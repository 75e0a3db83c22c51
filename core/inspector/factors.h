// The operands of products of two sparse matrices: op(A) as a description says, by rows, for as long as the
// call lasts.
#pragma once

#include "arguments.h"

namespace xkl::core::inspector {

template <class T>
struct operand {
    row_view<T> rows;

    sparse_status_t take(const sparse_matrix &a, sparse_operation_t operation, const matrix_descr &descr)
    {
        action how;
        const auto bad = action_of(a, operation, descr, how);
        return bad ? bad : rows_of(a, how, space_, rows);
    }
    /// The other side of op(A) times its own transpose; conjugated where op is none or the conjugate
    /// transpose
    sparse_status_t take_mirrored(const sparse_matrix &a, sparse_operation_t operation)
    {
        action how;
        if (const auto bad = action_of(a, operation, general_descr, how))
            return bad;
        how.transposed = !how.transposed;
        if (operation != SPARSE_OPERATION_TRANSPOSE && element<T>::is_complex)
            how.conjugated = !how.conjugated;
        return rows_of(a, how, space_, rows);
    }

  private:
    written_rows<T> space_;
};

/// The terms of row i of A times B; above: of its upper triangle
template <class T>
auto terms_of_product(const row_view<T> &a, const row_view<T> &b, bool above = false)
{
    return [&a, &b, above](int64_t i, const auto &use) {
        for (int64_t k = a.first(i); k < a.last(i); ++k) {
            const int64_t line = a.column(k);
            const T value = a.values[k];
            for (int64_t l = b.first(line); l < b.last(line); ++l)
                if (const int64_t j = b.column(l); !above || j >= i)
                    use(j, product(value, b.values[l]));
        }
    };
}

/// A guess at the terms of a product, for the choice of threads
template <class T>
double work_of_product(const row_view<T> &a, const row_view<T> &b)
{
    const double each = static_cast<double>(b.places()) / static_cast<double>(std::max<int64_t>(1, b.rows));
    return static_cast<double>(a.rows) + static_cast<double>(a.places()) * (1 + 2 * each);
}

/// Both handles there and of one type
inline sparse_status_t usable_pair(const sparse_matrix *a, const sparse_matrix *b)
{
    if (const auto bad = first_failure({usable(a), usable(b)}))
        return bad;
    return valid(a->type == b->type);
}

} // namespace xkl::core::inspector
