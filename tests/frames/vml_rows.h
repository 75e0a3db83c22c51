// The kernel tables of vector math as tests see them; the argument lists and places are the tests' own.
#pragma once

struct vml_row {
    const char *form;       // dExp, dExpI: the table's name
    const char *function;   // Exp
    char element;           // s, d, c, z
    const char *class_name; // 1i_1o
    bool strided;
};

extern const vml_row vml_rows[];
extern const int vml_row_count;
