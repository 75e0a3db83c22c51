// Numbers of many digits: what the references compute with.
#pragma once

#include <mpfr.h>

/// Digits to spare: compositions such as sqrt(z*z + 1) may lose hundreds of bits before a double would
/// notice.
class number {
  public:
    static inline mpfr_prec_t bits = 256; // set by a reference before it computes

    number() { mpfr_init2(value_, bits); }
    number(double x) : number() { mpfr_set_d(value_, x, MPFR_RNDN); }
    number(const number &other) : number() { mpfr_set(value_, other.value_, MPFR_RNDN); }
    number(number &&other) noexcept : number() { mpfr_swap(value_, other.value_); }
    number &operator=(number other) noexcept
    {
        mpfr_swap(value_, other.value_);
        return *this;
    }
    ~number() { mpfr_clear(value_); }

    operator mpfr_ptr() { return value_; }
    operator mpfr_srcptr() const { return value_; }

    friend bool operator<(const number &a, const number &b) { return mpfr_less_p(a.value_, b.value_); }
    friend bool operator>(const number &a, const number &b) { return b < a; }
    bool zero() const { return mpfr_zero_p(value_); }
    bool negative() const { return mpfr_signbit(value_); }

  private:
    mpfr_t value_;
};

/// A function of MPFR as a function of numbers
template <auto Function>
number of(const number &a)
{
    number r;
    Function(r, a, MPFR_RNDN);
    return r;
}
template <auto Function>
number of(const number &a, const number &b)
{
    number r;
    Function(r, a, b, MPFR_RNDN);
    return r;
}

inline number operator+(const number &a, const number &b)
{
    return of<mpfr_add>(a, b);
}
inline number operator-(const number &a, const number &b)
{
    return of<mpfr_sub>(a, b);
}
inline number operator*(const number &a, const number &b)
{
    return of<mpfr_mul>(a, b);
}
inline number operator/(const number &a, const number &b)
{
    return of<mpfr_div>(a, b);
}
inline number operator-(const number &a)
{
    return of<mpfr_neg>(a);
}
inline number magnitude(const number &a)
{
    number r;
    mpfr_abs(r, a, MPFR_RNDN);
    return r;
}
inline number pi()
{
    number r;
    mpfr_const_pi(r, MPFR_RNDN);
    return r;
}
