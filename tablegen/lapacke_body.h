// What the printers of LAPACKE's two kinds of bodies share.
#pragma once

#include "lapacke_table.h"

#include <ostream>
#include <set>

namespace tablegen {

void add_names(const condition &value, std::set<std::string> &names);
void add_names(const storage &value, std::set<std::string> &names);
void add_names(const std::vector<helper_use> &uses, std::set<std::string> &names);

/// `a, b, c`.
std::string joined(const std::vector<std::string> &parts);

/// Where a body is printed to, its routine, and the set of spellings that it belongs to.
class body_printer {
  public:
    body_printer(std::ostream &out, const lapacke_routine &row, bool twin)
        : out_(out), row_(row), suffix_(twin ? "_64" : ""), element_(row.base->element)
    {
    }

  protected:
    bool is_value() const { return row_.base->has_result(); }

    void line(const std::string &text, int depth = 1);
    void line_if(const condition &when, const std::string &text);
    void print_head(const std::string &name, const std::vector<c_parameter> &parameters);

    /// The values of the row's own that the given names need, each ahead of those that look at it.
    void print_lets(std::set<std::string> names);

    /// LAPACKE_dge_trans, LAPACKE_d_nancheck_64...
    std::string helper(const argument &arg, const std::string &scheme, const std::string &what) const;

    std::ostream &out_;
    const lapacke_routine &row_;
    const std::string suffix_;
    const char element_;
};

/// The function that checks for NaN and obtains the workspaces.
void print_high_level(std::ostream &out, const lapacke_routine &row, bool twin);

/// The function that copies row-major matrices.
void print_work(std::ostream &out, const lapacke_routine &row, bool twin);

} // namespace tablegen
