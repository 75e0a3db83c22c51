#include "accuracy.h"

#include "kernel_rows.h"
#include "library.h"
#include "reference.h"

#include <cmath>
#include <complex>
#include <cstdlib>
#include <sstream>

namespace {

constexpr size_t same_scalar = 16; // elements of a call that has one scalar for all

/// Distance in units of the last place that a result as large as `size` has. What is beyond the largest
/// number counts as the number that would follow it, so that an infinity just above the limit is no worse
/// than any other rounding.
double in_units(const number &distance, const number &size, const format &f)
{
    const mpfr_exp_t exponent = size.zero() ? f.least_exponent : mpfr_get_exp(size);
    number units;
    mpfr_mul_2si(units, distance, f.digits - std::max<mpfr_exp_t>(exponent, f.least_exponent), MPFR_RNDN);
    return mpfr_get_d(units, MPFR_RNDU);
}

number within(const number &x, const format &f)
{
    number limit(1);
    mpfr_mul_2si(limit, limit, f.past_largest, MPFR_RNDN);
    if (magnitude(x) > limit)
        return x.negative() ? -limit : limit;
    return x;
}

bool is_nan(const number &x)
{
    return mpfr_nan_p(static_cast<mpfr_srcptr>(x));
}

number floor_of(const std::string &text, const number &a)
{
    if (text == "-")
        return number(0);
    if (text == "envelope") { // of the oscillations of a Bessel function
        const number size = of<mpfr_sqrt>(number(2) / (pi() * magnitude(a)));
        return size > number(1) ? number(1) : size;
    }
    return number(std::stod(text));
}

double error_of(double y, const number &exact, const number &floor, const format &f)
{
    if (std::isnan(y) || is_nan(exact))
        return std::isnan(y) && is_nan(exact) ? 0 : INFINITY;
    const number limited = within(exact, f), size = magnitude(limited);
    return in_units(magnitude(within(number(y), f) - limited), size > floor ? size : floor, f);
}

/// The error of a complex result is the distance to the exact one, in units of that one's magnitude.
double error_of(std::complex<double> y, const complex_number &exact, const format &f)
{
    if (std::isnan(y.real()) || std::isnan(y.imag()))
        return is_nan(exact.re) || is_nan(exact.im) ? 0 : INFINITY;
    const complex_number limited = {within(exact.re, f), within(exact.im, f)};
    const number distance =
        of<mpfr_hypot>(within(number(y.real()), f) - limited.re, within(number(y.imag()), f) - limited.im);
    return in_units(distance, within(of<mpfr_hypot>(limited.re, limited.im), f), f);
}

/// Arguments of one measurement, as plain numbers: an element is `width` of them
template <class R>
struct vectors_of {
    std::vector<R> a, b;
};

template <class R>
vectors_of<R> arguments_of(const promise &p, size_t count, unsigned seed, bool scalar_b)
{
    std::mt19937_64 generator(seed + static_cast<unsigned>(std::hash<std::string>()(p.kernel()) % 1000));
    const size_t width = p.complex() ? 2 : 1;
    vectors_of<R> v;
    for (size_t i = 0; i < count; ++i) {
        const region &from = p.regions[i / same_scalar % p.regions.size()];
        for (size_t part = 0; part < from.parts.size(); ++part) {
            const R x = static_cast<R>(from.parts[part].random(generator));
            std::vector<R> &to = part < width ? v.a : v.b;
            const bool repeat = part >= width && scalar_b && i % same_scalar != 0;
            to.push_back(repeat ? to[to.size() - width] : x);
        }
    }
    return v;
}

template <class R>
struct results_of {
    std::vector<R> first, second;
};

/// All elements through one kernel
template <class R>
results_of<R> compute(const kernel_row &row, int set, const vectors_of<R> &v, size_t count)
{
    const auto n = static_cast<int32_t>(count);
    results_of<R> r{std::vector<R>(2 * count), std::vector<R>(2 * count)};
    const R *const a = v.a.data(), *const b = v.b.data();
    const auto scalar = [&](size_t i) { return static_cast<R>(linear_frac_scalars[i]); };
    switch (row.kind) {
    case kernel_class::two_in_one_out:
        kernel<const R *, const R *, R *>(row.name, set)(n, a, b, r.first.data());
        break;
    case kernel_class::one_in_two_out:
        kernel<const R *, R *, R *>(row.name, set)(n, a, r.first.data(), r.second.data());
        break;
    case kernel_class::linear_frac:
        kernel<const R *, const R *, R *, R, R, R, R>(row.name, set)(n, a, b, r.first.data(), scalar(0),
                                                                     scalar(1), scalar(2), scalar(3));
        break;
    case kernel_class::scalar:
        for (size_t i = 0; i < count; i += same_scalar) {
            const auto part = static_cast<int32_t>(std::min(same_scalar, count - i));
            if (row.element == 'c' || row.element == 'z')
                kernel<const R *, R *, const R *>(row.name, set)(part, a + 2 * i, &r.first[2 * i],
                                                                 b + 2 * i);
            else
                kernel<const R *, R *, R>(row.name, set)(part, a + i, &r.first[i], b[i]);
        }
        break;
    default:
        kernel<const R *, R *>(row.name, set)(n, a, r.first.data());
    }
    return r;
}

/// The errors of one element
template <class R>
class element {
  public:
    element(const promise &p, const kernel_row &row, const vectors_of<R> &v, size_t i) : format_(p.single())
    {
        const size_t width = p.complex() ? 2 : 1;
        const auto take = [&](const std::vector<R> &from, double(&to)[2]) {
            for (size_t k = 0; k < width && !from.empty(); ++k)
                to[k] = static_cast<double>(from[width * i + k]);
        };
        take(v.a, a_);
        take(v.b, b_);
        if (p.complex())
            find_complex(p, row.kind);
        else
            find_real(p);
        real_result_ = !p.complex() || row.kind == kernel_class::to_real;
        complex_ = p.complex();
    }

    void compare(const results_of<R> &r, size_t i, int set, worst_case &worst) const
    {
        double y[2] = {static_cast<double>(r.first[real_result_ ? i : 2 * i]), 0}, error = 0;
        if (complex_) {
            if (!real_result_)
                y[1] = static_cast<double>(r.first[2 * i + 1]);
            error = error_of(std::complex<double>(y[0], y[1]), exact_, format_);
        } else {
            error = error_of(y[0], exact_.re, floor_, format_);
            if (two_results_) {
                y[1] = static_cast<double>(r.second[i]);
                error = std::max(error, error_of(y[1], exact_.im, floor_, format_));
            }
        }
        if (error > worst.error)
            worst = {error, {a_[0], a_[1]}, {b_[0], b_[1]}, {y[0], y[1]}, set};
    }

  private:
    void find_real(const promise &p)
    {
        const real_reference *const reference = find_real_reference(p.function);
        const real_arguments x = {number(a_[0]), number(b_[0]), p.single()};
        exact_.re = reference->first(x);
        two_results_ = reference->second != nullptr;
        if (two_results_)
            exact_.im = reference->second(x);
        floor_ = floor_of(p.floor, x.a);
    }
    void find_complex(const promise &p, kernel_class kind)
    {
        const number zero(0);
        const complex_number a = {number(a_[0]), kind == kernel_class::to_complex ? zero : number(a_[1])};
        exact_ = find_complex_reference(p.function)->value(a, {number(b_[0]), number(b_[1])});
    }

    format format_;
    double a_[2] = {}, b_[2] = {};
    complex_number exact_; // or two real results
    number floor_;
    bool complex_ = false, real_result_ = false, two_results_ = false;
};

/// A function of a real vector with complex results has arguments of one part.
template <class R>
void drop_imaginary_parts(vectors_of<R> &v)
{
    for (size_t i = 0; 2 * i < v.a.size(); ++i)
        v.a[i] = v.a[2 * i];
    v.b.clear();
}

template <class R>
measurement measure_as(const promise &p, const kernel_row &row, size_t count, unsigned seed)
{
    vectors_of<R> v = arguments_of<R>(p, count, seed, row.kind == kernel_class::scalar);
    const vectors_of<R> parts = v;
    if (row.kind == kernel_class::to_complex)
        drop_imaginary_parts(v);
    const int sets = best_set() + 1;
    std::vector<results_of<R>> results;
    for (int set = 0; set < sets; ++set)
        for (const uint32_t mode : accuracies) {
            set_mode(mode | VML_ERRMODE_IGNORE);
            results.push_back(compute(row, set, v, count));
        }
    set_mode(VML_HA);
    measurement m;
    for (size_t i = 0; i < count; ++i) {
        const element<R> exact(p, row, parts, i);
        for (size_t call = 0; call < results.size(); ++call)
            exact.compare(results[call], i, static_cast<int>(call / 3), m.modes[call % 3]);
    }
    return m;
}

int from_environment(const char *name, int otherwise)
{
    const char *const text = std::getenv(name);
    return text ? std::atoi(text) : otherwise;
}

} // namespace

effort wanted_effort()
{
    return {from_environment("XKL_ACCURACY_SAMPLES", 4000),
            static_cast<unsigned>(from_environment("XKL_ACCURACY_SEED", 20240229))};
}

std::optional<measurement> measure(const promise &p, const effort &wanted)
{
    const kernel_row *const row = find_row(p.kernel());
    if (!row)
        return {};
    const real_reference *const real = find_real_reference(p.function);
    if (p.complex() ? !find_complex_reference(p.function) : !real)
        throw std::runtime_error("no reference for " + p.routine());
    number::bits = p.complex() ? 640 : 256;
    const size_t count = static_cast<size_t>(wanted.samples) /
                         static_cast<size_t>(p.complex() ? 4 : real->samples_divided_by);
    return p.single() ? measure_as<float>(p, *row, count, wanted.seed)
                      : measure_as<double>(p, *row, count, wanted.seed);
}

std::string describe(const promise &p, int mode, const worst_case &worst)
{
    std::ostringstream text;
    text.precision(17);
    const auto print = [&](const double(&x)[2]) {
        text << x[0];
        if (p.complex())
            text << (std::signbit(x[1]) ? "" : "+") << x[1] << "i";
    };
    text << p.routine() << " in mode " << mode_names[mode] << " is off by " << worst.error
         << " ULP (promised " << p.ulps[mode] << ") at ";
    print(worst.a);
    if (p.regions.front().parts.size() > (p.complex() ? 2u : 1u)) {
        text << ", ";
        print(worst.b);
    }
    text << ": ";
    print(worst.r);
    text << ", instruction set " << worst.set;
    return text.str();
}
