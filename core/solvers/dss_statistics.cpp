#include "solvers/dss_statistics.h"

#include <cctype>
#include <cmath>
#include <string>

namespace xkl::core::solvers {
namespace {

// det = mantissa * 10^power with the mantissa's larger part from 1 to 10; the power comes first.
void tell_determinant(const dss_solution &s, std::vector<double> &result)
{
    const factor_facts &facts = s.system->facts;
    const double size = std::max(std::abs(facts.determinant.real()), std::abs(facts.determinant.imag()));
    double power = 0;
    std::complex<double> mantissa = facts.determinant;
    if (size > 0) {
        const double digits = std::log10(size) + static_cast<double>(facts.exponent) * std::log10(2.0);
        power = std::floor(digits);
        mantissa *= std::pow(10.0, digits - power) / size;
    }
    result.insert(result.end(), {power, mantissa.real()});
    if (s.is_complex)
        result.push_back(mantissa.imag());
}

int64_t tell_inertia(const dss_solution &s, std::vector<double> &result)
{
    const factor_facts &facts = s.system->facts;
    if (facts.positive < 0)
        return XKL_DSS_STATISTICS_INVALID_MATRIX;
    result.insert(result.end(), {static_cast<double>(facts.positive), static_cast<double>(facts.negative),
                                 static_cast<double>(s.n - facts.positive - facts.negative)});
    return XKL_DSS_SUCCESS;
}

int64_t tell_word(const dss_solution &s, const std::string &word, std::vector<double> &result)
{
    const bool of_order = word == "reordertime" || word == "peakmem";
    const bool of_factors = word == "factortime" || word == "determinant" || word == "inertia" ||
                            word == "flops" || word == "factormem" || word == "solvemem" ||
                            word == "solvetime";
    if (!of_order && !of_factors)
        return XKL_DSS_STATISTICS_INVALID_STRING;
    if (s.state < (of_order ? dss_solution::ordered : dss_solution::factored))
        return XKL_DSS_STATISTICS_INVALID_STATE;
    if (word == "determinant")
        tell_determinant(s, result);
    else if (word == "inertia")
        return tell_inertia(s, result);
    else
        result.push_back(word == "reordertime"  ? s.reorder_seconds
                         : word == "factortime" ? s.factor_seconds
                         : word == "solvetime"  ? s.solve_seconds
                         : word == "flops"      ? s.system->facts.operations
                         : word == "peakmem"    ? static_cast<double>(s.peak_memory)
                                                : static_cast<double>(s.factor_memory));
    return XKL_DSS_SUCCESS;
}

} // namespace

int64_t tell_statistics(const dss_solution &s, const char *words, double *values)
{
    std::vector<double> result;
    for (const char *at = words;; ++at) {
        std::string word;
        for (; *at != ',' && *at != '\0'; ++at)
            if (*at != ' ')
                word.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(*at))));
        if (const int64_t status = tell_word(s, word, result))
            return status;
        if (*at == '\0')
            break;
    }
    std::copy(result.begin(), result.end(), values);
    return XKL_DSS_SUCCESS;
}

} // namespace xkl::core::solvers
