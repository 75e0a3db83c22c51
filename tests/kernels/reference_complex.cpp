// Complex functions by their definitions: so many digits that what cancels doesn't count.
#include "reference.h"

#include <algorithm>
#include <iterator>

namespace {

using z = const complex_number &;

complex_number operator+(z a, z b)
{
    return {a.re + b.re, a.im + b.im};
}
complex_number operator-(z a, z b)
{
    return {a.re - b.re, a.im - b.im};
}
complex_number operator*(z a, z b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
complex_number operator/(z a, z b)
{
    const number size = b.re * b.re + b.im * b.im;
    return {(a.re * b.re + a.im * b.im) / size, (a.im * b.re - a.re * b.im) / size};
}
complex_number conjugate(z a)
{
    return {a.re, -a.im};
}
complex_number times_i(z a)
{
    return {-a.im, a.re};
}
complex_number times_minus_i(z a)
{
    return {a.im, -a.re};
}

complex_number one()
{
    return {number(1), number(0)};
}
number absolute(z a)
{
    return of<mpfr_hypot>(a.re, a.im);
}
number angle(z a)
{
    return of<mpfr_atan2>(a.im, a.re);
}

complex_number exp(z a)
{
    const number size = of<mpfr_exp>(a.re);
    return {size * of<mpfr_cos>(a.im), size * of<mpfr_sin>(a.im)};
}
complex_number ln(z a)
{
    return {of<mpfr_log>(absolute(a)), angle(a)};
}
complex_number log10(z a)
{
    const complex_number natural = ln(a);
    const number ten = of<mpfr_log>(number(10));
    return {natural.re / ten, natural.im / ten};
}
complex_number pow(z a, z b)
{
    return exp(b * ln(a));
}
complex_number sqrt(z a)
{
    const number large = of<mpfr_sqrt>((absolute(a) + magnitude(a.re)) / number(2));
    if (large.zero())
        return a;
    const number small = magnitude(a.im) / (number(2) * large);
    const bool left = a.re.negative();
    const number im = left ? large : small;
    return {left ? small : large, a.im.negative() ? -im : im};
}

complex_number sinh(z a)
{
    return {of<mpfr_sinh>(a.re) * of<mpfr_cos>(a.im), of<mpfr_cosh>(a.re) * of<mpfr_sin>(a.im)};
}
complex_number cosh(z a)
{
    return {of<mpfr_cosh>(a.re) * of<mpfr_cos>(a.im), of<mpfr_sinh>(a.re) * of<mpfr_sin>(a.im)};
}
complex_number asinh(z a)
{
    return ln(a + sqrt(a * a + one()));
}
complex_number acosh(z a)
{
    return ln(a + sqrt(a + one()) * sqrt(a - one()));
}
complex_number atanh(z a)
{
    const complex_number twice = ln(one() + a) - ln(one() - a);
    return {twice.re / number(2), twice.im / number(2)};
}
complex_number asin(z a)
{
    return times_minus_i(asinh(times_i(a)));
}

// clang-format off
const complex_reference references[] = {
    {"Add", [](z a, z b) { return a + b; }},
    {"Sub", [](z a, z b) { return a - b; }},
    {"Mul", [](z a, z b) { return a * b; }},
    {"Div", [](z a, z b) { return a / b; }},
    {"MulByConj", [](z a, z b) { return a * conjugate(b); }},
    {"Conj", [](z a, z) { return conjugate(a); }},
    {"Abs", [](z a, z) { return complex_number{absolute(a), number(0)}; }},
    {"Arg", [](z a, z) { return complex_number{angle(a), number(0)}; }},
    {"CIS", [](z a, z) { return exp({number(0), a.re}); }},
    {"Sqrt", [](z a, z) { return sqrt(a); }},
    {"Pow", pow},
    {"Powx", pow},
    {"Exp", [](z a, z) { return exp(a); }},
    {"Ln", [](z a, z) { return ln(a); }},
    {"Log10", [](z a, z) { return log10(a); }},
    {"Sinh", [](z a, z) { return sinh(a); }},
    {"Cosh", [](z a, z) { return cosh(a); }},
    {"Tanh", [](z a, z) { return sinh(a) / cosh(a); }},
    {"Sin", [](z a, z) { return times_minus_i(sinh(times_i(a))); }},
    {"Cos", [](z a, z) { return cosh(times_i(a)); }},
    {"Tan", [](z a, z) { return times_minus_i(sinh(times_i(a)) / cosh(times_i(a))); }},
    {"Asinh", [](z a, z) { return asinh(a); }},
    {"Acosh", [](z a, z) { return acosh(a); }},
    {"Atanh", [](z a, z) { return atanh(a); }},
    {"Asin", [](z a, z) { return asin(a); }},
    {"Acos", [](z a, z) { return complex_number{pi() / number(2), number(0)} - asin(a); }},
    {"Atan", [](z a, z) { return times_minus_i(atanh(times_i(a))); }},
};
// clang-format on

} // namespace

const complex_reference *find_complex_reference(const std::string &function)
{
    const auto *const found =
        std::find_if(std::begin(references), std::end(references),
                     [&](const complex_reference &each) { return each.name == function; });
    return found == std::end(references) ? nullptr : found;
}
