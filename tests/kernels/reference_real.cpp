#include "reference.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

using arguments = const real_arguments &;

template <auto Function>
number of_a(arguments x)
{
    return of<Function>(x.a);
}
template <auto Function>
number of_ab(arguments x)
{
    return of<Function>(x.a, x.b);
}
/// One of the functions that round to an integer, which take no direction
template <auto Function>
number rounded(arguments x)
{
    number r;
    Function(r, x.a);
    return r;
}
template <auto Function>
number of_degrees(arguments x)
{
    number r;
    Function(r, x.a, 360, MPFR_RNDN);
    return r;
}
/// Bessel functions of a given order
template <auto Function>
number of_order(arguments x)
{
    number r;
    Function(r, mpfr_get_si(x.b, MPFR_RNDN), x.a, MPFR_RNDN);
    return r;
}

number lgamma(arguments x)
{
    number r;
    int sign;
    mpfr_lgamma(r, &sign, x.a, MPFR_RNDN);
    return r;
}

/// The sum of (a/2)**(2k + order) / (k! (k + order)!): all terms are positive for a > 0.
template <int Order>
number modified_bessel(arguments x)
{
    const number half = x.a / number(2), quarter = half * half;
    number term = Order == 1 ? half : number(1), sum = term;
    for (int k = 1; mpfr_regular_p(term); ++k) {
        term = term * quarter;
        mpfr_div_ui(term, term, static_cast<unsigned long>(k) * static_cast<unsigned long>(k + Order),
                    MPFR_RNDN);
        sum = sum + term;
        if (!term.zero() && mpfr_get_exp(term) < mpfr_get_exp(sum) - number::bits)
            break;
    }
    return sum;
}

/// exp(a*a)*erfc(a); where erfc is too small, its asymptotic series
number erfcx(const number &a)
{
    if (a < number(100))
        return of<mpfr_exp>(a * a) * of<mpfr_erfc>(a);
    number term = number(1), sum = term;
    const number square = number(2) * a * a;
    for (int k = 1; k < 60; ++k) {
        term = -term * number(2 * k - 1) / square;
        sum = sum + term;
    }
    return sum / (a * of<mpfr_sqrt>(pi()));
}

bool settled(const number &x, const number &step)
{
    return step.zero() || mpfr_get_exp(step) < mpfr_get_exp(x) - 120;
}

/// x with erf(x) = a, for arguments up to a half: Newton's steps
number central_inverse(const number &a)
{
    const number slope = number(2) / of<mpfr_sqrt>(pi());
    number x = a / slope;
    for (int steps = 0; steps < 50 && !x.zero(); ++steps) {
        const number step = (of<mpfr_erf>(x) - a) / (slope * of<mpfr_exp>(-x * x));
        x = x - step;
        if (settled(x, step))
            break;
    }
    return x;
}

/// x with erfc(x) = q, for q up to a half: Newton's steps on ln(erfc), which bends one way only
number tail_inverse(const number &q)
{
    const number slope = number(2) / of<mpfr_sqrt>(pi()), target = of<mpfr_log>(q);
    number x = of<mpfr_sqrt>(-target);
    for (int steps = 0; steps < 100; ++steps) {
        const number tail = of<mpfr_erfc>(x);
        const number step = (of<mpfr_log>(tail) - target) / (-slope * of<mpfr_exp>(-x * x) / tail);
        x = x - step;
        if (settled(x, step))
            break;
    }
    return x;
}

number erfc_inverse(const number &q)
{
    if (q < number(0) || q > number(2))
        return number(std::nan(""));
    if (q.zero())
        return number(INFINITY);
    if (q < number(.5))
        return tail_inverse(q);
    if (q > number(1.5))
        return mpfr_cmp_ui(q, 2) == 0 ? number(-INFINITY) : -tail_inverse(number(2) - q);
    return central_inverse(number(1) - q);
}

number erf_inverse(const number &a)
{
    const number size = magnitude(a);
    if (size < number(.5))
        return central_inverse(a);
    const number x = erfc_inverse(number(1) - size);
    return a.negative() ? -x : x;
}

number normal_distribution(arguments x)
{
    return of<mpfr_erfc>(-x.a / of<mpfr_sqrt>(number(2))) / number(2);
}

number normal_quantile(arguments x)
{
    return -of<mpfr_sqrt>(number(2)) * erfc_inverse(number(2) * x.a);
}

number next_after(arguments x)
{
    if (x.single)
        return number(std::nextafter(mpfr_get_flt(x.a, MPFR_RNDN), mpfr_get_flt(x.b, MPFR_RNDN)));
    return number(std::nextafter(mpfr_get_d(x.a, MPFR_RNDN), mpfr_get_d(x.b, MPFR_RNDN)));
}

number logb(arguments x)
{
    return x.a.zero() ? number(-INFINITY) : number(static_cast<double>(mpfr_get_exp(x.a) - 1));
}

/// The one of larger or smaller magnitude; of two alike the larger or smaller one
template <bool Larger>
number by_magnitude(arguments x)
{
    const int order = mpfr_cmpabs(x.a, x.b);
    if (order == 0)
        return Larger ? of<mpfr_max>(x.a, x.b) : of<mpfr_min>(x.a, x.b);
    return (order > 0) == Larger ? x.a : x.b;
}

number linear_frac(arguments x)
{
    const double *const s = linear_frac_scalars;
    return (number(s[0]) * x.a + number(s[1])) / (number(s[2]) * x.b + number(s[3]));
}

// clang-format off
const real_reference references[] = {
    {"Add", of_ab<mpfr_add>},
    {"Sub", of_ab<mpfr_sub>},
    {"Mul", of_ab<mpfr_mul>},
    {"Div", of_ab<mpfr_div>},
    {"Sqr", of_a<mpfr_sqr>},
    {"Abs", [](arguments x) { return magnitude(x.a); }},
    {"LinearFrac", linear_frac},
    {"Fmod", of_ab<mpfr_fmod>},
    {"Remainder", of_ab<mpfr_remainder>},
    {"Inv", [](arguments x) { return number(1) / x.a; }},
    {"Sqrt", of_a<mpfr_sqrt>},
    {"InvSqrt", of_a<mpfr_rec_sqrt>},
    {"Cbrt", of_a<mpfr_cbrt>},
    {"InvCbrt", [](arguments x) { return number(1) / of<mpfr_cbrt>(x.a); }},
    {"Pow2o3", [](arguments x) { return of<mpfr_cbrt>(x.a * x.a); }},
    {"Pow3o2", [](arguments x) { return of<mpfr_sqrt>(x.a * x.a * x.a); }},
    {"Pow", of_ab<mpfr_pow>},
    {"Powr", of_ab<mpfr_powr>},
    {"Powx", of_ab<mpfr_pow>},
    {"Hypot", of_ab<mpfr_hypot>},
    {"Exp", of_a<mpfr_exp>},
    {"Exp2", of_a<mpfr_exp2>},
    {"Exp10", of_a<mpfr_exp10>},
    {"Expm1", of_a<mpfr_expm1>},
    {"Ln", of_a<mpfr_log>},
    {"Log2", of_a<mpfr_log2>},
    {"Log10", of_a<mpfr_log10>},
    {"Log1p", of_a<mpfr_log1p>},
    {"Logb", logb},
    {"Cos", of_a<mpfr_cos>},
    {"Sin", of_a<mpfr_sin>},
    {"SinCos", of_a<mpfr_sin>, of_a<mpfr_cos>},
    {"Tan", of_a<mpfr_tan>},
    {"Acos", of_a<mpfr_acos>},
    {"Asin", of_a<mpfr_asin>},
    {"Atan", of_a<mpfr_atan>},
    {"Atan2", of_ab<mpfr_atan2>},
    {"Cospi", of_a<mpfr_cospi>},
    {"Sinpi", of_a<mpfr_sinpi>},
    {"SinCospi", of_a<mpfr_sinpi>, of_a<mpfr_cospi>},
    {"Tanpi", of_a<mpfr_tanpi>},
    {"Acospi", of_a<mpfr_acospi>},
    {"Asinpi", of_a<mpfr_asinpi>},
    {"Atanpi", of_a<mpfr_atanpi>},
    {"Atan2pi", of_ab<mpfr_atan2pi>},
    {"Cosd", of_degrees<mpfr_cosu>},
    {"Sind", of_degrees<mpfr_sinu>},
    {"Tand", of_degrees<mpfr_tanu>},
    {"Cosh", of_a<mpfr_cosh>},
    {"Sinh", of_a<mpfr_sinh>},
    {"Tanh", of_a<mpfr_tanh>},
    {"Acosh", of_a<mpfr_acosh>},
    {"Asinh", of_a<mpfr_asinh>},
    {"Atanh", of_a<mpfr_atanh>},
    {"Erf", of_a<mpfr_erf>, nullptr, 2},
    {"Erfc", of_a<mpfr_erfc>, nullptr, 2},
    {"Erfcx", [](arguments x) { return erfcx(x.a); }, nullptr, 2},
    {"ErfInv", [](arguments x) { return erf_inverse(x.a); }, nullptr, 4},
    {"ErfcInv", [](arguments x) { return erfc_inverse(x.a); }, nullptr, 4},
    {"CdfNorm", normal_distribution, nullptr, 2},
    {"CdfNormInv", normal_quantile, nullptr, 4},
    {"LGamma", lgamma, nullptr, 8},
    {"TGamma", of_a<mpfr_gamma>, nullptr, 8},
    {"ExpInt1", [](arguments x) { return -of<mpfr_eint>(-x.a); }, nullptr, 4},
    {"I0", modified_bessel<0>, nullptr, 8},
    {"I1", modified_bessel<1>, nullptr, 8},
    {"J0", of_a<mpfr_j0>, nullptr, 8},
    {"J1", of_a<mpfr_j1>, nullptr, 8},
    {"Jn", of_order<mpfr_jn>, nullptr, 8},
    {"Y0", of_a<mpfr_y0>, nullptr, 8},
    {"Y1", of_a<mpfr_y1>, nullptr, 8},
    {"Yn", of_order<mpfr_yn>, nullptr, 8},
    {"Floor", rounded<mpfr_floor>},
    {"Ceil", rounded<mpfr_ceil>},
    {"Trunc", rounded<mpfr_trunc>},
    {"Round", rounded<mpfr_round>},
    {"NearbyInt", rounded<mpfr_roundeven>},
    {"Rint", rounded<mpfr_roundeven>},
    {"Frac", of_a<mpfr_frac>},
    {"Modf", rounded<mpfr_trunc>, of_a<mpfr_frac>},
    {"CopySign", of_ab<mpfr_copysign>},
    {"NextAfter", next_after},
    {"Fdim", of_ab<mpfr_dim>},
    {"Fmax", of_ab<mpfr_max>},
    {"Fmin", of_ab<mpfr_min>},
    {"MaxMag", by_magnitude<true>},
    {"MinMag", by_magnitude<false>},
};
// clang-format on

} // namespace

const real_reference *find_real_reference(const std::string &function)
{
    const auto *const found =
        std::find_if(std::begin(references), std::end(references),
                     [&](const real_reference &each) { return each.name == function; });
    return found == std::end(references) ? nullptr : found;
}
