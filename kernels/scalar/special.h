// Special functions without a vector form, one element at a time: compiled once, for all instruction sets.
// With long doubles within half an ULP of a double's result, with doubles a few ULP off, and faster. No
// argument makes them throw or set errno; outside of a function's domain they give NaN.
#pragma once

namespace xkl::kernels::scalar {

double exponential_integral(double x);
long double exponential_integral(long double x);

/// I0 (order 0) and I1 (order 1)
double modified_bessel(int order, double x);
long double modified_bessel(int order, long double x);

/// How close to the true value: doubles; 4 ULP of a double; 1 ULP of a double
enum class effort { least, less, most };

/// J and Y of orders below 2**29 in size; J has values for x < 0 if its order is an integer. Near their
/// zeros `most` is worse for orders other than 0 and 1: within 2**-60 of the waves' amplitude, as is `less`
/// for all.
double bessel_j(double order, double x, effort wanted);
double bessel_y(double order, double x, effort wanted);

} // namespace xkl::kernels::scalar
