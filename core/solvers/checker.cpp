// Judgements of compressed rows as the user gives them.
#include "solvers/checker.h"

#include "service/service_entries.h"
#include "solvers/matrix.h"

#include <algorithm>

namespace xkl::core {
namespace {

const char *sentence(int64_t status)
{
    switch (status) {
    case XKL_SPARSE_CHECKER_NON_MONOTONIC:
        return "XKL: row %lld starts at %lld and ends at %lld; row starts must ascend from the first "
               "index\n";
    case XKL_SPARSE_CHECKER_OUT_OF_RANGE:
        return "XKL: place %lld holds the column %lld, in row %lld; the matrix has no such column\n";
    case XKL_SPARSE_CHECKER_NONTRIANGULAR:
        return "XKL: place %lld holds the column %lld, in row %lld; that is outside the structure asked "
               "for\n";
    case XKL_SPARSE_CHECKER_NONORDERED:
        return "XKL: place %lld follows the column %lld with the column %lld; columns of a row must "
               "ascend\n";
    default:
        return nullptr;
    }
}

} // namespace

int32_t sparse_matrix_checker(sparse_struct *matrix)
{
    std::fill_n(matrix->check_result, 3, 0);
    if (matrix->n <= 0)
        return XKL_SPARSE_CHECKER_SUCCESS;
    const solvers::input_rows input{matrix->n, matrix->csr_ia, matrix->csr_ja,
                                    matrix->indexing == XKL_ZERO_BASED ? 0 : 1};
    solvers::input_fault fault = solvers::find_fault(input, matrix->matrix_structure, true);
    if (fault.status == XKL_SPARSE_CHECKER_SUCCESS)
        return XKL_SPARSE_CHECKER_SUCCESS;
    if (matrix->print_style == XKL_FORTRAN_STYLE) {
        ++fault.about[0];
        if (fault.status == XKL_SPARSE_CHECKER_OUT_OF_RANGE ||
            fault.status == XKL_SPARSE_CHECKER_NONTRIANGULAR)
            ++fault.about[2];
    }
    std::copy_n(fault.about, 3, matrix->check_result);
    if (matrix->message_level == XKL_PRINT)
        xkl_serv_printf_s(sentence(fault.status), static_cast<long long>(fault.about[0]),
                          static_cast<long long>(fault.about[1]), static_cast<long long>(fault.about[2]));
    return static_cast<int32_t>(fault.status);
}

// The matrix itself may be in the record already.
void sparse_matrix_checker_init(sparse_struct *matrix)
{
    matrix->indexing = XKL_ZERO_BASED;
    matrix->matrix_structure = XKL_GENERAL_STRUCTURE;
    matrix->print_style = XKL_C_STYLE;
    matrix->message_level = XKL_NO_PRINT;
}

// Without the blanks at the end, cut to what fits ahead of the zero.
void xkl_cvt_to_null_terminated_str(int8_t *destination, const int64_t *length, const char *source,
                                    int64_t source_length)
{
    if (!destination || !length || *length < 1)
        return;
    while (source_length > 0 && source[source_length - 1] == ' ')
        --source_length;
    const int64_t count = std::clamp<int64_t>(source_length, 0, *length - 1);
    std::copy_n(source, count, destination);
    destination[count] = 0;
}

} // namespace xkl::core
