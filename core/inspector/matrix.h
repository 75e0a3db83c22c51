// The record behind a matrix handle: where the elements stand, what the program announced to do with them,
// and what optimize prepared.
//
// Reading threads share a handle: no product or solve changes it, but for the number of the element that
// the last failure was about. What changes a handle (set, order, optimize...) is the caller's to keep
// apart.
#pragma once

#include "array.h"
#include "core_inspector.h"

#include <atomic>

namespace xkl::core::inspector {

enum class storage : char { coo, csr, csc, bsr };

/// What a product or solve is announced for; symgs and the other sweeps need the same as a product.
enum class purpose : char { product, many_products, solve, many_solves, sweep };

struct hint {
    purpose what;
    sparse_operation_t operation;
    matrix_descr descr;
    int64_t expected_calls;
};

/// Something that was prepared for the matrix and goes with it. Released through its own type.
struct prepared {
    virtual void release() noexcept = 0;
    prepared *next = nullptr;

  protected:
    ~prepared() = default;
};

inline void release_all(prepared *&list)
{
    while (list) {
        prepared *const first = list;
        list = first->next;
        first->release();
    }
}

} // namespace xkl::core::inspector

struct sparse_matrix {
    using storage = xkl::core::inspector::storage;

    char type = 'D'; // letter_of the elements
    storage form = storage::csr;
    sparse_index_base_t base = SPARSE_INDEX_BASE_ZERO;
    sparse_layout_t layout = SPARSE_LAYOUT_ROW_MAJOR; // of blocks
    int64_t block = 1;                                // their order, 1 in the other storages
    int64_t rows = 0, cols = 0;                       // counted in blocks
    int64_t nnz = 0;                                  // COO alone: the others' follows from the arrays

    // Compressed: starts, ends and the indices across. COO: rows (in starts) and columns. Null where a
    // product in stages has not come so far.
    int64_t *starts = nullptr, *ends = nullptr, *minor = nullptr;
    void *values = nullptr;
    bool owns = false; // the four arrays, of which ends is starts + 1 then

    static constexpr int most_hints = 16;
    xkl::core::inspector::hint hints[most_hints];
    int hint_count = 0;
    bool copies_allowed = true; // set_memory_hint
    bool in_place = false;      // set_inplace_copy
    bool host_queue = false;    // set_is_sycl_cpu: there are no other queues, so nothing follows from it
    xkl::core::inspector::prepared *plans = nullptr;
    xkl::core::inspector::prepared *factors = nullptr; // of the orthogonal factorization
    std::atomic<int64_t> error_info{0}; // written by failing routines, readers of the matrix included

    sparse_matrix() = default;
    sparse_matrix(const sparse_matrix &) = delete;
    sparse_matrix &operator=(const sparse_matrix &) = delete;
    ~sparse_matrix()
    {
        forget_prepared();
        drop_arrays();
    }

    /// What was prepared holds copies of values and places: it goes when these change.
    void forget_prepared()
    {
        release_all(plans);
        release_all(factors);
    }
    void drop_arrays()
    {
        if (owns) {
            xkl_serv_free(starts);
            xkl_serv_free(minor);
            xkl_serv_free(values);
        }
        starts = ends = minor = nullptr;
        values = nullptr;
        owns = false;
    }

    /// Lines of the compressed direction: rows, columns (CSC) or rows of blocks
    int64_t lines() const { return form == storage::csc ? cols : rows; }
    int64_t total_rows() const { return rows * block; }
    int64_t total_cols() const { return cols * block; }
    /// Stored places: elements, or blocks
    int64_t places() const
    {
        if (form == storage::coo)
            return nnz;
        int64_t sum = 0;
        for (int64_t i = 0; starts && i < lines(); ++i)
            sum += ends[i] - starts[i];
        return sum;
    }
    bool complete() const
    {
        if (form == storage::coo)
            return nnz == 0 || (starts && minor && values);
        return (starts || lines() == 0) && ((minor && values) || places() == 0);
    }
};
