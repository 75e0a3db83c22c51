// The LAPACKE tables: what a routine's C functions check, obtain and copy around the call of its Fortran
// frame. A row says only what does not follow from the rules; here everything is spelled out, one record a
// function. tablegen/LAPACKE.md has the grammar and the rules.
#pragma once

#include "lapacke_expression.h"
#include "table.h"

#include <optional>
#include <utility>

namespace tablegen {

using condition = std::optional<expression>;

/// A storage scheme with its sizes: ge(m, n).
struct storage {
    std::string name;
    std::vector<expression> sizes;
    condition offset; // elements between the array's start and the part that is meant

    bool has_leading_dimension() const;
    expression rows() const; // of the column-major copy
    expression columns() const;
};

/// One call of a helper for an array: a NaN check, a copy in, a copy out.
struct helper_use {
    storage scheme;
    condition when;
};

/// What is done for an argument: an array, or a number that goes by value.
struct lapacke_array {
    argument arg;  // name and kind; `written` where the C list has no const
    int position;  // in the C list, the layout counted
    bool by_value; // a number whose NaN check is all that there is
    std::vector<helper_use> nan;

    std::optional<storage> scheme; // of the column-major copy, if there ever is one
    condition when;                // and when there is
    std::vector<helper_use> in, out;
    std::string ld; // the argument that is its leading dimension, or what stands in its place; or ""
    bool ld_is_argument;
    condition refused; // row-major: what is wrong with the leading dimension
    int ld_position;
};

/// A condition on an argument that is no leading dimension, refused in row-major.
struct lapacke_check {
    int position;
    expression when;
    bool with_nan; // the high-level function refuses it too, where it looks for NaN
};

struct workspace {
    std::string name, kind;
    std::string size; // answer of the size query: an argument of the _work function, or a local; or ""
    bool twice;       // two answers: the size argument, and a number of columns
    condition count;
    condition when;
};

/// Numbers that travel between a workspace and an argument of the high-level function.
struct handed_over {
    bool before; // the call, or after it
    std::string argument, workspace;
    int offset; // in the workspace
    expression count;
};

struct c_parameter {
    std::string type, name; // type: `double *`, `lapack_int `
};

/// The two functions of one routine, in one type.
struct lapacke_routine {
    const routine *base;
    std::string place;
    bool has_layout, has_twin;
    bool transposed; // the routine's own argument trans tells the layout: one call, no copies
    bool uncopied;   // row-major: one call with other arguments, no copies
    std::vector<std::pair<std::string, expression>> lets;
    std::vector<lapacke_array> arrays;
    std::vector<lapacke_check> checks;
    std::vector<workspace> workspaces;
    int queried_before; // the workspace ahead of which the size query is made; -1: none is made
    condition stop;     // after the query
    condition size_query;
    std::vector<handed_over> handed;
    std::vector<workspace> row_spaces; // row-major: workspaces of the _work function's own
    std::vector<std::string> row_call; // row-major: its arguments
    std::vector<c_parameter> parameters, work_parameters; // layout not among them

    std::string name() const { return "LAPACKE_" + base->lower(); }
    bool has_info() const { return !base->arguments.empty() && base->arguments.back().kind == "info"; }
    bool is_work_parameter(const std::string &parameter) const;
    bool is_parameter(const std::string &parameter) const;
};

/// The functions of the tables' rows, which stand on the routines of `base`.
std::vector<lapacke_routine> read_lapacke(const std::vector<std::string> &files,
                                          const std::vector<routine> &base);

/// Throws table_error where a row's statements don't fit together.
void check(const lapacke_routine &row);

/// The letter of a helper for an argument's elements: s, d, c, z.
char helper_letter(const argument &arg, char element);

/// An argument's element as xkl_lapacke.h names it.
std::string lapacke_element(const argument &arg, char element);

} // namespace tablegen
