// Special values of complex kernels: the tables of the C standard's Annex G, results that must not overflow
// or underflow on the way, and statuses, for both types, in each instruction set of this processor and in
// each mode.
#include "library.h"

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = std::numbers::pi;
constexpr double any_inf = 1e301, any_zero = 1e-301; // expected with either sign

using number = std::complex<double>;

/// A part of a result: no number, a zero or an infinity of that sign, or near the expected one
bool is_as(double y, double expected, double tolerance)
{
    if (expected == any_inf)
        return std::isinf(y);
    if (expected == any_zero)
        return y == 0;
    if (std::isnan(expected) || std::isnan(y))
        return std::isnan(expected) && std::isnan(y);
    if (expected == 0 || std::isinf(expected))
        return y == expected && std::signbit(y) == std::signbit(expected);
    return std::abs(y - expected) <= tolerance * std::abs(expected);
}

/// One element between ordinary ones, so that the fast path and the rare one meet in a register
constexpr int place = 5, length = 19;

template <class T>
T ordinary()
{
    if constexpr (std::is_floating_point_v<T>)
        return T(0.5);
    else
        return {0.5f, 0.25f};
}

template <class Out, class... In>
Out element(const std::string &function, int set, In... arguments)
{
    std::vector<Out> r(length);
    const auto vectors = std::make_tuple([&] {
        std::vector<In> v(length, ordinary<In>());
        v[place] = arguments;
        return v;
    }()...);
    std::apply(
        [&](const auto &...v) {
            kernel<decltype(v.data())..., Out *>(function, set)(length, v.data()..., r.data());
        },
        vectors);
    for (int i = 0; i < length; ++i)
        if (i != place) {
            EXPECT_EQ(std::abs(r[i] - r[0]), 0) << function << " beside a special element";
        }
    return r[place];
}

std::string shown(number a)
{
    return "(" + std::to_string(a.real()) + ", " + std::to_string(a.imag()) + ")";
}

/// body(letter, tolerance, instruction set, what) for both types
template <class Body>
void everywhere(const Body &body)
{
    for (int set = 0; set <= best_set(); ++set)
        for (const uint32_t accuracy : accuracies) {
            set_mode(accuracy);
            const std::string what = " set " + std::to_string(set) + " mode " + std::to_string(accuracy);
            body(std::complex<double>(), 1e-14, set, what);
            body(std::complex<float>(), 1e-6, set, what);
        }
    set_mode(VML_HA);
}

template <class T>
std::string named(const char *function)
{
    return (sizeof(T) == 16 ? "z" : "c") + std::string(function);
}

struct row {
    const char *function;
    number a, r;
    int status = 0;
};

void expect_row(const row &each)
{
    everywhere([&]<class T>(T, double tolerance, int set, const std::string &where) {
        const std::string what = named<T>(each.function) + shown(each.a) + where;
        set_status(0);
        const number y = element<T>(named<T>(each.function), set, T(each.a));
        EXPECT_TRUE(is_as(y.real(), each.r.real(), tolerance) && is_as(y.imag(), each.r.imag(), tolerance))
            << what << " is " << shown(y) << " instead of " << shown(each.r);
        EXPECT_EQ(status(), each.status) << what;
    });
}

double negated(double x)
{
    return x == any_inf || x == any_zero ? x : -x;
}
number conjugate(number a)
{
    return {a.real(), negated(a.imag())};
}
number opposite(number a)
{
    return {negated(a.real()), negated(a.imag())};
}
number turned_right(number a)
{
    return {a.imag(), negated(a.real())};
}

enum symmetry { none, odd, even };

/// A row, its conjugate, and its reflection
void expect_symmetric(const row &each, symmetry kind)
{
    for (const row &half : {each, {each.function, conjugate(each.a), conjugate(each.r), each.status}}) {
        expect_row(half);
        if (kind != none)
            expect_row(
                {half.function, opposite(half.a), kind == odd ? opposite(half.r) : half.r, half.status});
    }
}

constexpr int domain = VML_STATUS_ERRDOM, pole = VML_STATUS_SING;

TEST(AnnexG, ExponentialLogarithmAndRoot)
{
    const row rows[] = {
        {"Exp", {0, 0}, {1, 0}},
        {"Exp", {-0., 0}, {1, 0}},
        {"Exp", {1, inf}, {nan, nan}, domain},
        {"Exp", {1, nan}, {nan, nan}},
        {"Exp", {inf, 0}, {inf, 0}},
        {"Exp", {-inf, 2}, {-0., 0}},
        {"Exp", {inf, 2}, {-inf, inf}},
        {"Exp", {-inf, inf}, {any_zero, any_zero}},
        {"Exp", {inf, inf}, {any_inf, nan}, domain},
        {"Exp", {-inf, nan}, {any_zero, any_zero}},
        {"Exp", {inf, nan}, {any_inf, nan}},
        {"Exp", {nan, 0}, {nan, 0}},
        {"Exp", {nan, 2}, {nan, nan}},
        {"Ln", {-0., 0}, {-inf, pi}, pole},
        {"Ln", {0, 0}, {-inf, 0}, pole},
        {"Ln", {3, inf}, {inf, pi / 2}},
        {"Ln", {3, nan}, {nan, nan}},
        {"Ln", {-inf, 3}, {inf, pi}},
        {"Ln", {inf, 3}, {inf, 0}},
        {"Ln", {-inf, inf}, {inf, 3 * pi / 4}},
        {"Ln", {inf, inf}, {inf, pi / 4}},
        {"Ln", {-inf, nan}, {inf, nan}},
        {"Ln", {nan, 3}, {nan, nan}},
        {"Ln", {nan, inf}, {inf, nan}},
        {"Ln", {1, 0}, {0, 0}},
        {"Ln", {-1, 0}, {0, pi}}, // the cut: from above, and below by the conjugate
        {"Log10", {0, 0}, {-inf, 0}, pole},
        {"Log10", {-inf, 3}, {inf, pi / std::log(10)}},
        {"Log10", {-100, 0}, {2, pi / std::log(10)}},
        {"Sqrt", {0, 0}, {0, 0}},
        {"Sqrt", {-0., 0}, {0, 0}},
        {"Sqrt", {-3, inf}, {inf, inf}},
        {"Sqrt", {nan, inf}, {inf, inf}},
        {"Sqrt", {3, nan}, {nan, nan}},
        {"Sqrt", {-inf, 3}, {0, inf}},
        {"Sqrt", {inf, 3}, {inf, 0}},
        {"Sqrt", {-inf, nan}, {nan, any_inf}},
        {"Sqrt", {inf, nan}, {inf, nan}},
        {"Sqrt", {nan, 3}, {nan, nan}},
        {"Sqrt", {-4, 0}, {0, 2}},
        {"Sqrt", {4, 0}, {2, 0}},
    };
    for (const row &each : rows)
        expect_symmetric(each, none);
}

/// Rows of f for the hyperbolic function, and by f(i*a) those of the circular one
void expect_with_circular(const row &each, symmetry kind, const char *circular)
{
    expect_symmetric(each, kind);
    expect_symmetric(
        {circular, turned_right(each.a), kind == odd ? turned_right(each.r) : each.r, each.status}, kind);
}

TEST(AnnexG, HyperbolicAndCircularFunctions)
{
    const row of_cosh[] = {
        {"Cosh", {0, 0}, {1, 0}},
        {"Cosh", {0, inf}, {nan, any_zero}, domain},
        {"Cosh", {0, nan}, {nan, any_zero}},
        {"Cosh", {3, inf}, {nan, nan}, domain},
        {"Cosh", {3, nan}, {nan, nan}},
        {"Cosh", {inf, 0}, {inf, 0}},
        {"Cosh", {inf, 2}, {-inf, inf}},
        {"Cosh", {inf, inf}, {any_inf, nan}, domain},
        {"Cosh", {inf, nan}, {inf, nan}},
        {"Cosh", {nan, 0}, {nan, any_zero}},
        {"Cosh", {nan, 3}, {nan, nan}},
    };
    for (const row &each : of_cosh)
        expect_with_circular(each, even, "Cos");
    const row of_sinh[] = {
        {"Sinh", {0, 0}, {0, 0}},
        {"Sinh", {0, inf}, {any_zero, nan}, domain},
        {"Sinh", {0, nan}, {any_zero, nan}},
        {"Sinh", {3, inf}, {nan, nan}, domain},
        {"Sinh", {3, nan}, {nan, nan}},
        {"Sinh", {inf, 0}, {inf, 0}},
        {"Sinh", {inf, 2}, {-inf, inf}},
        {"Sinh", {inf, inf}, {any_inf, nan}, domain},
        {"Sinh", {inf, nan}, {any_inf, nan}},
        {"Sinh", {nan, 0}, {nan, 0}},
        {"Sinh", {nan, 3}, {nan, nan}},
    };
    for (const row &each : of_sinh)
        expect_with_circular(each, odd, "Sin");
    const row of_tanh[] = {
        {"Tanh", {0, 0}, {0, 0}},
        {"Tanh", {3, inf}, {nan, nan}, domain},
        {"Tanh", {3, nan}, {nan, nan}},
        {"Tanh", {inf, 2}, {1, -0.}},
        {"Tanh", {inf, 1}, {1, 0}},
        {"Tanh", {400, 1}, {1, 8 * std::exp(-800) * std::sin(2) / 2}},
        {"Tanh", {inf, inf}, {1, any_zero}},
        {"Tanh", {inf, nan}, {1, any_zero}},
        {"Tanh", {nan, 0}, {nan, 0}},
        {"Tanh", {nan, 3}, {nan, nan}},
    };
    for (const row &each : of_tanh)
        expect_with_circular(each, odd, "Tan");
}

TEST(AnnexG, InverseFunctions)
{
    const row of_asinh[] = {
        {"Asinh", {0, 0}, {0, 0}},
        {"Asinh", {3, inf}, {inf, pi / 2}},
        {"Asinh", {3, nan}, {nan, nan}},
        {"Asinh", {inf, 3}, {inf, 0}},
        {"Asinh", {inf, inf}, {inf, pi / 4}},
        {"Asinh", {inf, nan}, {inf, nan}},
        {"Asinh", {nan, 0}, {nan, 0}},
        {"Asinh", {nan, 3}, {nan, nan}},
        {"Asinh", {nan, inf}, {any_inf, nan}},
        {"Asinh", {0, 2}, {std::acosh(2), pi / 2}}, // the cut, all its sides by the symmetries
        {"Asinh", {0, 1}, {0, pi / 2}},
        {"Asinh", {2, 0}, {std::asinh(2), 0}},
    };
    for (const row &each : of_asinh)
        expect_with_circular(each, odd, "Asin");
    const row of_atanh[] = {
        {"Atanh", {0, 0}, {0, 0}},
        {"Atanh", {0, nan}, {0, nan}},
        {"Atanh", {1, 0}, {inf, 0}, pole},
        {"Atanh", {3, inf}, {0, pi / 2}},
        {"Atanh", {3, nan}, {nan, nan}},
        {"Atanh", {inf, 3}, {0, pi / 2}},
        {"Atanh", {inf, inf}, {0, pi / 2}},
        {"Atanh", {inf, nan}, {0, nan}},
        {"Atanh", {nan, 3}, {nan, nan}},
        {"Atanh", {nan, inf}, {any_zero, pi / 2}},
        {"Atanh", {2, 0}, {std::atanh(.5), pi / 2}}, // the cut
        {"Atanh", {.5, 0}, {std::atanh(.5), 0}},
        {"Atanh", {0, 1}, {0, pi / 4}},
    };
    for (const row &each : of_atanh)
        expect_with_circular(each, odd, "Atan");
    const row of_acos[] = {
        {"Acos", {0, 0}, {pi / 2, -0.}},         {"Acos", {-0., 0}, {pi / 2, -0.}},
        {"Acos", {0, nan}, {pi / 2, nan}},       {"Acos", {3, inf}, {pi / 2, -inf}},
        {"Acos", {3, nan}, {nan, nan}},          {"Acos", {-inf, 3}, {pi, -inf}},
        {"Acos", {inf, 3}, {0, -inf}},           {"Acos", {-inf, inf}, {3 * pi / 4, -inf}},
        {"Acos", {inf, inf}, {pi / 4, -inf}},    {"Acos", {inf, nan}, {nan, any_inf}},
        {"Acos", {nan, 3}, {nan, nan}},          {"Acos", {nan, inf}, {nan, -inf}},
        {"Acos", {2, 0}, {0, -std::acosh(2)}}, // the cuts
        {"Acos", {-2, 0}, {pi, -std::acosh(2)}}, {"Acos", {1, 0}, {0, -0.}},
        {"Acosh", {0, 0}, {0, pi / 2}},          {"Acosh", {3, inf}, {inf, pi / 2}},
        {"Acosh", {3, nan}, {nan, nan}},         {"Acosh", {-inf, 3}, {inf, pi}},
        {"Acosh", {inf, 3}, {inf, 0}},           {"Acosh", {-inf, inf}, {inf, 3 * pi / 4}},
        {"Acosh", {inf, inf}, {inf, pi / 4}},    {"Acosh", {inf, nan}, {inf, nan}},
        {"Acosh", {nan, 3}, {nan, nan}},         {"Acosh", {nan, inf}, {inf, nan}},
        {"Acosh", {-2, 0}, {std::acosh(2), pi}}, {"Acosh", {.5, 0}, {0, pi / 3}},
    };
    for (const row &each : of_acos)
        expect_symmetric(each, none);
}

struct pair_row {
    const char *function;
    number a, b, r;
    int status = 0;
};

TEST(AnnexG, ProductsQuotientsAndPowers)
{
    const pair_row rows[] = {
        {"Mul", {inf, nan}, {1, 1}, {any_inf, any_inf}},
        {"Mul", {inf, inf}, {1, -2}, {inf, nan}, domain},
        {"Mul", {inf, 0}, {0, 0}, {nan, nan}, domain},
        {"Mul", {1, nan}, {1, 1}, {nan, nan}},
        {"Mul", {-0., 0}, {1, 0}, {-0., 0}},
        {"MulByConj", {3, 4}, {3, 4}, {25, 0}},
        {"MulByConj", {inf, inf}, {1, 2}, {inf, nan}, domain},
        {"Div", {1, 1}, {inf, nan}, {any_zero, any_zero}},
        {"Div", {1, 1}, {inf, inf}, {0, 0}},
        {"Div", {1, 2}, {0, 0}, {inf, inf}, pole},
        {"Div", {0, 0}, {0, 0}, {nan, nan}, domain},
        {"Div", {inf, 1}, {0, 0}, {inf, any_inf}},
        {"Div", {inf, 1}, {1, 1}, {inf, -inf}},
        {"Div", {inf, inf}, {inf, inf}, {nan, nan}, domain},
        {"Div", {nan, 1}, {1, 1}, {nan, nan}},
        {"Pow", {0, 0}, {0, 0}, {1, 0}},
        {"Pow", {nan, nan}, {0, 0}, {1, 0}},
        {"Pow", {0, 0}, {2, 1}, {0, 0}},
        {"Pow", {0, 0}, {-1, 0}, {any_inf, nan}, pole},
        {"Pow", {3, 4}, {2, 0}, {-7, 24}},
        {"Pow", {2, 1}, {12, 0}, {11753, -10296}},
        {"Pow", {1, 2}, {nan, 1}, {nan, nan}},
    };
    for (const pair_row &each : rows)
        everywhere([&]<class T>(T, double tolerance, int set, const std::string &where) {
            const std::string what = named<T>(each.function) + shown(each.a) + shown(each.b) + where;
            set_status(0);
            const number y = element<T>(named<T>(each.function), set, T(each.a), T(each.b));
            EXPECT_TRUE(is_as(y.real(), each.r.real(), tolerance) &&
                        is_as(y.imag(), each.r.imag(), tolerance))
                << what << " is " << shown(y);
            EXPECT_EQ(status(), each.status) << what;
        });
}

TEST(AnnexG, MagnitudesAndAngles)
{
    const struct {
        number a;
        double magnitude, angle;
    } rows[] = {
        {{3, 4}, 5, std::atan2(4, 3)},
        {{0, 0}, 0, 0},
        {{-0., 0}, 0, pi},
        {{-0., -0.}, 0, -pi},
        {{inf, nan}, inf, nan},
        {{nan, -inf}, inf, nan},
        {{nan, 1}, nan, nan},
        {{-inf, 1}, inf, pi},
        {{-inf, -inf}, inf, -3 * pi / 4},
        {{1, -0.}, 1, -0.},
    };
    for (const auto &each : rows)
        everywhere([&]<class T>(T, double tolerance, int set, const std::string &where) {
            using R = typename T::value_type;
            set_status(0);
            EXPECT_TRUE(is_as(element<R>(named<T>("Abs"), set, T(each.a)), each.magnitude, tolerance))
                << named<T>("Abs") << shown(each.a) << where;
            EXPECT_TRUE(is_as(element<R>(named<T>("Arg"), set, T(each.a)), each.angle, tolerance))
                << named<T>("Arg") << shown(each.a) << where;
            EXPECT_EQ(status(), 0);
            const number turn = element<T>(named<T>("CIS"), set, R(-inf));
            EXPECT_TRUE(std::isnan(turn.real()) && std::isnan(turn.imag()));
            EXPECT_EQ(status(), domain);
        });
}

/// Numbers at both ends of a type's range: `size` for the largest and the smallest normal power of two
TEST(Range, NothingOverflowsOrUnderflowsOnTheWay)
{
    everywhere([]<class T>(T, double tolerance, int set, const std::string &where) {
        using R = typename T::value_type;
        using limits = std::numeric_limits<R>;
        const R large = std::ldexp(R(1), limits::max_exponent - 3), small = limits::min();
        for (const R size : {large, small}) {
            const auto near = [&](const char *function, number y, number expected) {
                EXPECT_LE(std::abs(y - expected), tolerance * std::abs(expected))
                    << named<T>(function) << where << " size " << size << " is " << shown(y);
            };
            const T a(3 * size, -4 * size);
            set_status(0);
            near("Abs", number(element<R>(named<T>("Abs"), set, a) / size), 5);
            near("Div", element<T>(named<T>("Div"), set, a, a), 1);
            near("Div", element<T>(named<T>("Div"), set, a, T(0, size)), {-4, -3});
            const R root = std::sqrt(size);
            near("Sqrt", number(element<T>(named<T>("Sqrt"), set, a)) / double(root), {2, -1});
            near("Ln", element<T>(named<T>("Ln"), set, a),
                 {std::log(5.) + std::log(size), -std::atan2(4, 3)});
            EXPECT_EQ(status(), 0) << where;
        }
    });
}

TEST(Range, LogarithmsNextToTheUnitCircleKeepTheirDigits)
{
    everywhere([]<class T>(T, double tolerance, int set, const std::string &where) {
        using R = typename T::value_type;
        const R step = std::ldexp(R(1), std::numeric_limits<R>::digits == 53 ? -30 : -12);
        const number y = element<T>(named<T>("Ln"), set, T(R(1), step)); // log(1 + step**2)/2
        EXPECT_NEAR(y.real() / (double(step) * step / 2), 1, 8 * tolerance + double(step) * step) << where;
        const number z = element<T>(named<T>("Ln"), set, T(R(.6), R(.8)));
        const double excess = double(std::fma((long double)R(.6), R(.6), (long double)R(.8) * R(.8) - 1));
        EXPECT_NEAR(z.real() / (excess / 2), 1, 1e-3) << where;
    });
}

TEST(Statuses, OverflowAndUnderflow)
{
    everywhere([]<class T>(T, double, int set, const std::string &where) {
        using R = typename T::value_type;
        using limits = std::numeric_limits<R>;
        const T large(limits::max(), limits::max()), small(limits::min(), limits::min());
        const auto expect = [&](const char *function, int expected, auto... a) {
            set_status(0);
            (void)element<T>(named<T>(function), set, a...);
            EXPECT_EQ(status(), expected) << named<T>(function) << where;
        };
        constexpr int overflow = VML_STATUS_OVERFLOW, underflow = VML_STATUS_UNDERFLOW;
        expect("Mul", overflow, large, T(2, 0));
        expect("Mul", underflow, small, T(R(.25), 0));
        expect("Mul", 0, small, T(0, 0));
        expect("Div", overflow, large, T(R(.25), 0));
        expect("Div", underflow, small, T(8, 8));
        expect("Exp", overflow, T(R(1e3), 1));
        expect("Exp", underflow, T(R(-1e3), 1));
        expect("Cosh", overflow, T(R(-1e3), 1));
        expect("Sin", overflow, T(1, R(1e3)));
        expect("Pow", overflow, T(R(1e3), 1), T(R(1e3), 0));
        expect("Pow", underflow, T(R(1e3), 1), T(R(-1e3), 0));
    });
}

} // namespace
