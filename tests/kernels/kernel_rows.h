// The rows that table-driven tests of the kernels walk, printed from the tables.
#pragma once

#include <string>

enum class kernel_class {
    one_in_one_out,
    two_in_one_out,
    one_in_two_out,
    scalar,
    linear_frac,
    to_real,
    to_complex,
    pack
};

struct kernel_row {
    const char *name; // dExp, dExpI
    char element;     // s, d, c, z
    kernel_class kind;
    bool strided;
};

extern const kernel_row kernel_rows[];
extern const int kernel_row_count;

/// nullptr for a stand-in
inline const kernel_row *find_row(const std::string &name)
{
    for (int i = 0; i < kernel_row_count; ++i)
        if (name == kernel_rows[i].name)
            return &kernel_rows[i];
    return nullptr;
}
