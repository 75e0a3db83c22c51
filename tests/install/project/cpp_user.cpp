// The library's complex type can be the program's own; ends with 0 when the results are right.
#include <complex>
#define XKL_Complex16 std::complex<double>
#include <xkl.h>

#include <cstdio>
#include <vector>

int main()
{
    const std::vector<std::complex<double>> x = {{1, 2}, {0, 1}}, y = {{3, 0}, {1, 1}};
    const auto n = static_cast<int64_t>(x.size());
    std::complex<double> from_c, from_fortran;
    const int64_t one = 1;
    cblas_zdotc_sub(n, x.data(), 1, y.data(), 1, &from_c);
    zdotc(&from_fortran, &n, x.data(), &one, y.data(), &one);
    const int64_t largest = cblas_izamax(n, x.data(), 1);
    std::printf("C++: %g%+gi, largest at %lld\n", from_c.real(), from_c.imag(),
                static_cast<long long>(largest));
    return !(from_c == std::complex<double>(4, -7) && from_c == from_fortran && largest == 0);
}
