// Systems by their type, and what all of them share.
#include "solvers/typed_system.h"

namespace xkl::core::solvers {

extern template class typed_system<float>;
extern template class typed_system<double>;
extern template class typed_system<std::complex<float>>;
extern template class typed_system<std::complex<double>>;

std::unique_ptr<any_system> make_system(const matrix_kind &kind, bool single)
{
    if (kind.is_complex && single)
        return std::make_unique<typed_system<std::complex<float>>>();
    if (kind.is_complex)
        return std::make_unique<typed_system<std::complex<double>>>();
    if (single)
        return std::make_unique<typed_system<float>>();
    return std::make_unique<typed_system<double>>();
}

int64_t bytes_left(std::FILE *file)
{
    const long here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return 0;
    const long end = std::ftell(file);
    return std::fseek(file, here, SEEK_SET) == 0 && end > here ? end - here : 0;
}

bool consistent(const pattern &a)
{
    if (static_cast<int64_t>(a.start.size()) != a.n + 1 || a.start.front() != 0 ||
        a.start.back() != a.elements() || a.source.size() != a.column.size())
        return false;
    const input_rows rows{a.n, a.start.data(), a.column.data(), 0};
    return find_fault(rows, a.triangle ? XKL_UPPER_TRIANGULAR : XKL_GENERAL_STRUCTURE, true).status ==
           XKL_SPARSE_CHECKER_SUCCESS;
}

} // namespace xkl::core::solvers
