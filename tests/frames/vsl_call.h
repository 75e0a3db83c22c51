// Any routine of random streams, called by its name with arguments that a test states in words, and what
// must reach the kernel then.
#pragma once

#include "recorder.h"
#include "vsl_rows.h"

#include <cstdint>
#include <string>
#include <vector>

struct vsl_parameter {
    std::string name, kind;
    bool is_real() const { return kind == "real"; }
    bool is_integer() const { return kind == "int" || kind == "long" || kind == "index" || kind == "brng"; }
    bool is_array() const { return kind == "reals" || kind == "along"; }
};

/// The arguments of a row; a generator's parameters.
std::vector<vsl_parameter> vsl_parameters(const vsl_row &row);

/// A row by its routine's name.
const vsl_row &vsl_row_of(const std::string &name);

/// A stream as frames know it: alive, or not.
struct recorded_stream {
    unsigned char bytes[16] = {0, 0, 0, 0, 1};
};
extern recorded_stream live_stream, dead_stream;

/// One argument: a real, or the word of anything else.
struct vsl_value {
    bool real;
    double number;
    int64_t word;
};

/// `7`, `0.5`, `nan`, `null`, or `at` for an address that nobody reads, by the parameter's kind. Streams:
/// `live`, `dead`, `null`, and for variables that hold one these behind `&`.
vsl_value vsl_value_of(const vsl_parameter &parameter, const std::string &text);
std::vector<vsl_value> vsl_values(const std::vector<vsl_parameter> &parameters, const std::string &text);

/// Integers and reals travel apart, so their places among each other do not matter.
int32_t vsl_call(void *routine, const std::vector<vsl_value> &values, bool single);

/// What a kernel's record has of the values: integers are narrowed.
words vsl_handed(const std::vector<vsl_parameter> &parameters, const std::vector<vsl_value> &values);
