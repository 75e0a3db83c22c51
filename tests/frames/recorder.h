// The recording core: stands in the place of libxkl_core.so, computes nothing, and remembers every call
// that reaches it. Tests link against it and look at what arrived.
#pragma once

#include "xkl_types.h"

#include <bit>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

using words = std::vector<int64_t>;

struct core_call {
    std::string entry; // xkl_blas_dgemm
    words arguments;   // every integer-class argument, hidden ones included
};

struct error_report {
    std::string name;
    int64_t position;
    int64_t length;
};

struct trace_line {
    double seconds;
    int domain;
    std::string text;
};

struct memory_block {
    char *place;
    std::size_t size;
    int alignment;
    bool live;
};

/// What one test does and sees. A fresh one is made by `reset`.
struct recording {
    std::vector<core_call> calls;
    std::vector<error_report> reports; // those that reached xkl_serv_xerbla
    std::vector<trace_line> lines;
    std::vector<std::string>
        order; // the steps of all kinds, in order: register, clock, verbose_mode, report, line, entries
    int default_reports = 0;    // those that went down the whole chain, to the core's default
    int32_t verbose = 0;        // the live flag
    std::vector<double> clock;  // readings to hand out; 1, 2, 3... when empty
    int64_t integer_result = 0; // what entries return
    double real_result = 0;
    bool forward_reports = true;                    // whether xkl_serv_xerbla calls the registered handler
    int failing_allocations = 0;                    // the next so many allocations return null
    int good_allocations = 0;                       // after so many others
    int64_t allocated = 0;                          // live blocks
    bool serves_memory = false;                     // whether xkl_serv_malloc hands out memory
    std::vector<memory_block> blocks;               // what it handed out, freed blocks too
    std::map<std::string, std::string> environment; // what xkl_serv_getenv finds
    std::function<void(const core_call &)> on_call; // looks at the arguments while they are alive
};

/// The bytes of memory that was handed out and not written.
constexpr unsigned char unwritten = 0xa5;

extern recording recorded;
void reset();

// For generated entries.
extern "C++" void record(const char *entry, std::initializer_list<int64_t> arguments);
/// A real argument among the words: its bits in double precision.
inline int64_t recorded_bits(double value)
{
    return std::bit_cast<int64_t>(value);
}
/// How a matrix descriptor comes by value.
struct recorded_descriptor {
    int32_t type, mode, diag;
};
int64_t recorded_integer();
/// Who was registered for reports since the last `reset`; null if nobody was. Frames write it in place,
/// without a step "register", if XKL_RECORD_IN_PLACE is set.
xkl_xerbla_handler registered_handler();
double recorded_real();

/// Its parts differ, so that one that is lost or in the wrong place shows.
template <class Complex>
Complex recorded_complex()
{
    using part = decltype(Complex::real);
    return {static_cast<part>(recorded_real()), static_cast<part>(recorded_integer())};
}
