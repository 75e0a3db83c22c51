// The table of promises: how far each function's results may be off, and for which arguments that is
// measured.
#pragma once

#include "number.h"

#include <ostream>
#include <random>
#include <string>
#include <vector>

/// One part of an argument's domain
class range {
  public:
    /// As kernels/accuracy.tbl spells it, for floats (`single`) or doubles
    range(const std::string &text, bool single);

    double random(std::mt19937_64 &generator) const;

  private:
    enum class kind { uniform, exponents, near, multiples, integers } kind_;
    bool single_, both_signs_ = false;
    double low_ = 0, high_ = 0;
};

/// Where an element's arguments come from: real and imaginary parts of the first and the second one
struct region {
    std::vector<range> parts; // a, b or Re a, Im a, Re b, Im b
};

struct promise {
    std::string function; // Exp
    char type;            // s, d, c, z
    double ulps[3];       // in the modes high, low, enhanced performance
    std::string floor;    // what a result is at least taken for when its last place is counted
    std::vector<region> regions;

    bool single() const { return type == 's' || type == 'c'; }
    bool complex() const { return type == 'c' || type == 'z'; }
    std::string kernel() const { return type + function; }
    std::string routine() const { return "v" + kernel(); }
    friend std::ostream &operator<<(std::ostream &out, const promise &p) { return out << p.routine(); }
};

/// Rows of the table, one promise for each type; throws std::runtime_error with the line's number
std::vector<promise> read_promises(const std::string &path);

/// Bits of a number's significand, and the exponents of its type
struct format {
    explicit format(bool single)
        : digits(single ? 24 : 53), least_exponent(single ? -125 : -1021), past_largest(single ? 128 : 1024)
    {
    }
    int digits, least_exponent, past_largest;
};

/// Half of the digits, in ULP
double half_the_digits(bool single);
