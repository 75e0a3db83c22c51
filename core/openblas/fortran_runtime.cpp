// What the static libraries' Fortran code needs of its compiler's run-time library. These few functions are
// all, and that library as an archive cannot be linked into a shared one: it is compiled for programs.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

extern "C" {

/// first // second, cut or padded with blanks to the length of the result.
void _gfortran_concat_string(size_t length, char *result, size_t first_length, const char *first,
                             size_t second_length, const char *second)
{
    const size_t from_first = std::min(length, first_length);
    const size_t from_second = std::min(length - from_first, second_length);
    std::memcpy(result, first, from_first);
    std::memcpy(result + from_first, second, from_second);
    std::memset(result + from_first + from_second, ' ', length - from_first - from_second);
}

double _gfortran_pow_r8_i8(double base, int64_t exponent)
{
    return std::pow(base, static_cast<double>(exponent));
}

float _gfortran_pow_r4_i8(float base, int64_t exponent)
{
    return static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent)));
}
}
