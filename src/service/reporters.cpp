// The reporters of the C interfaces.
#include "core_service.h"
#include "frame/core_text.h"
#include "xkl_service.h"

namespace {

constexpr size_t longest_name = 4096;
constexpr int malloc_error_position = 1000;

constexpr int64_t work_memory_error = -1010;
constexpr int64_t transpose_memory_error = -1011;

} // namespace

extern "C" void cblas_xerbla(const char *name, int position)
{
    const int64_t wide_position = position;
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    const auto length = static_cast<int64_t>(xkl_serv_strnlen_s(name, longest_name));
    xkl_serv_xerbla(name, &wide_position, length);
}

extern "C" void cblas_xerbla_malloc_error(const char *name)
{
    cblas_xerbla(name, malloc_error_position);
}

// Prints, and never reaches xerbla: the C interface of LAPACK has numbers of its own.
extern "C" void LAPACKE_xerbla(const char *name, int64_t info)
{
    if (info == work_memory_error)
        xkl_serv_printf_s("Not enough memory to allocate work array in %s\n", name);
    else if (info == transpose_memory_error)
        xkl_serv_printf_s("Not enough memory to transpose matrix in %s\n", name);
    else if (info < 0) // negated without a sign: the least integer has no negative
        xkl_serv_printf_s("Wrong parameter %d in %s\n", static_cast<int32_t>(-static_cast<uint64_t>(info)),
                          name);
}
