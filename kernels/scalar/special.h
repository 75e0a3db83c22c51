// Special functions without a vector form, one element at a time: compiled once, for all instruction sets. With long
// doubles within half an ULP of a double's result (near the zeros of Bessel functions: within 2**-60 of their
// amplitude), with doubles a few ULP off, and faster. No argument makes them throw or set errno; outside of a
// function's domain they give NaN.
#pragma once

namespace xkl::kernels::scalar {

double exponential_integral(double x);
long double exponential_integral(long double x);

/// I0 (order 0) and I1 (order 1)
double modified_bessel(int order, double x);
long double modified_bessel(int order, long double x);

/// J and Y; an order that is not an integer has no values for x < 0
double bessel_j(double order, double x);
long double bessel_j(long double order, long double x);
double bessel_y(double order, double x);
long double bessel_y(long double order, long double x);

} // namespace xkl::kernels::scalar
