// Any entry point of vector math, called by its name with arguments that tell which is which. The
// argument lists are written here once more, apart from the generator's.
#pragma once

#include "recorder.h"
#include "vml_rows.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// An argument behind n in C's list.
struct vml_parameter {
    enum role { vector, increment, scalar, places } is;
    std::string name;
    bool checked() const { return is == vector; }
};

/// The list of a row: `a b r`, with an increment behind each vector in strided forms.
std::vector<vml_parameter> vml_parameters(const vml_row &row);

/// The threader that the row's vectors go to; empty for the pack class.
std::string vml_threader(const vml_row &row);

/// One of the twelve spellings.
struct vml_spelling {
    std::string name;
    bool fortran, in_mode, wide;
};
std::vector<vml_spelling> vml_spellings(const vml_row &row);

/// A call of one spelling, and what it must hand on.
class vml_call {
  public:
    vml_call(const vml_row &row, const vml_spelling &spelling, int64_t n);

    void set_null(std::size_t parameter) { vectors_[parameter] = 0; }
    void make() const;

    /// What reaches the threader behind the count and ahead of the library, for a block that starts at an
    /// element; for the pack class what reaches the kernel behind n.
    words handed_on(int64_t start) const;

    static constexpr uint64_t mode = 0x500000203; // the lower half counts

  private:
    bool is_complex() const { return row_.element == 'c' || row_.element == 'z'; }
    bool by_value(const vml_parameter &each) const;

    const vml_row &row_;
    const vml_spelling &spelling_;
    const std::vector<vml_parameter> parameters_;
    int64_t n_;
    words vectors_;    // addresses that nobody reads, one a parameter
    words increments_; // one a parameter
    std::vector<double> doubles_;
    std::vector<float> floats_;
};

/// Runs a check for every spelling of every table.
void for_each_entry(const std::function<void(const vml_row &, const vml_spelling &)> &check);
